// Everything of a view that a user can change: a value that is taken from the view, compared, put back, and kept with a session.
// The picture of a view follows from its state, its data and its size alone. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/chart/chart_tag.h"
#include "platform/win32.h"
#include "propdb/property_db_interface.h"

struct ViewRange {
    double origin = 0, extent = 0;
    bool operator==(const ViewRange&) const = default;
};

// A range that a view can show: both ends finite, and so far apart that labels and pixels can still tell values between them.
bool IsShowable(const ViewRange& range);

struct ViewState {
    struct Axis {
        std::string unit;
        std::optional<ViewRange> range;  // none: follows the data
        std::string picture{};           // of its values' numbers (time/number_text.h); empty: six significant digits
        bool operator==(const Axis&) const = default;
    };
    // What a channel is called and drawn with.
    struct Channel {
        std::string key, name;
        COLORREF colour = 0;
        bool operator==(const Channel&) const = default;
    };
    using Tag = ChartTag;
    // The selection that stays, in parts of the plot.
    struct Selection {
        double left = 0, top = 0, right = 0, bottom = 0;
        bool operator==(const Selection&) const = default;
    };

    static constexpr LONG kStandardPane = 290;
    static constexpr size_t kLongestPicture = 64;

    std::vector<Axis> axes;         // value axes, in their places from the plot outwards
    std::vector<Channel> channels;  // all of the session's, in its order
    std::optional<ViewRange> time;  // seconds since the first reading; none: follows the data
    std::vector<Tag> tags;          // their places are such that a file gives them back as they are
    std::optional<Selection> selection;
    std::vector<std::string> hidden;  // names of channels that are not drawn
    LONG pane = kStandardPane;        // the value list's width, in pixels at 96 dots an inch
    std::vector<LONG> columns;        // its columns' widths, the same

    bool operator==(const ViewState&) const = default;

    // The folder "View" of a session (docs/formats.md), without the tags and the channels, which are kept with the
    // chart and the readings. Storing replaces it.
    void Store(IPropertyDB& db) const;
    // What is there replaces what this state holds; what is missing, damaged or beyond reason stays as it is. Axes of units that
    // this state does not have are passed over, those that the folder lacks keep their order behind the others.
    void Load(IPropertyDB& db);
};
