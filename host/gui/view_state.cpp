#include "host/gui/view_state.h"

#include <algorithm>
#include <cmath>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"

namespace {
constexpr char kFolder[] = "View";
constexpr LONG kWidestStored = 16384;

void Append(CDoubleArray& array, const std::optional<ViewRange>& range) {
    // Equal ends are no range: that is how "follows the data" is kept.
    array.Add(range ? range->origin : 0);
    array.Add(range ? range->extent : 0);
}

std::optional<ViewRange> RangeAt(CDoubleArray& array, INT_PTR at) {
    if (at < 0 || at + 1 >= array.GetSize()) return std::nullopt;
    const ViewRange range{array.GetAt(at), array.GetAt(at + 1)};
    return IsShowable(range) ? std::optional(range) : std::nullopt;
}

bool IsPart(double value) { return value >= 0 && value <= 1; }
}  // namespace

bool IsShowable(const ViewRange& range) {
    if (!std::isfinite(range.origin) || !std::isfinite(range.extent)) return false;
    // Single precision bounds what an axis holds; beyond five digits above its own grain labels become a blur.
    constexpr double kFarthest = 1e37, kGrain = 1e-10, kLeast = 1e-30;
    const double farthest = std::max(std::abs(range.origin), std::abs(range.extent));
    const double span = std::abs(range.extent - range.origin);
    return farthest <= kFarthest && span >= std::max(kLeast, farthest * kGrain);
}

void ViewState::Store(IPropertyDB& db) const {
    db.Remove(kFolder);
    db.BeginUsing(kFolder);
    CStringArray units, pictures, names;
    CDoubleArray ranges, timeRange, parts;
    CDWordArray widths;
    for (const Axis& axis : axes) {
        units.Add(axis.unit.c_str());
        pictures.Add(axis.picture.c_str());
        Append(ranges, axis.range);
    }
    Append(timeRange, time);
    for (const std::string& name : hidden) names.Add(name.c_str());
    for (const LONG width : columns) widths.Add(static_cast<DWORD>(width));
    if (units.GetSize() > 0) {
        db.SetValue("sUnits", units);
        db.SetValue("rRanges", ranges);
        db.SetValue("sPictures", pictures);
    }
    db.SetValue("rTime", timeRange);
    if (names.GetSize() > 0) db.SetValue("sHidden", names);
    db.SetValue("nPane", static_cast<int>(pane));
    if (widths.GetSize() > 0) db.SetValue("nColumns", widths);
    if (selection) {
        for (const double part : {selection->left, selection->top, selection->right, selection->bottom}) parts.Add(part);
        db.SetValue("rSelection", parts);
    }
    db.EndUsing();
}

void ViewState::Load(IPropertyDB& db) {
    if (!db.Find(kFolder)) return;
    db.BeginUsing(kFolder);
    CStringArray units, pictures, names;
    CDoubleArray ranges, timeRange, parts;
    CDWordArray widths;
    db.GetValue("sUnits", units);
    db.GetValue("rRanges", ranges);
    db.GetValue("sPictures", pictures);
    auto place = axes.begin();
    for (INT_PTR i = 0; i < units.GetSize(); ++i) {
        const std::string unit = static_cast<const char*>(units.GetAt(i));
        const auto found = std::find_if(place, axes.end(), [&](const Axis& axis) { return axis.unit == unit; });
        if (found == axes.end()) continue;
        std::rotate(place, found, found + 1);
        place->range = RangeAt(ranges, 2 * i);
        if (i < pictures.GetSize() && pictures.GetAt(i).GetLength() <= static_cast<int>(kLongestPicture))
            place->picture = pictures.GetAt(i).GetString();
        ++place;
    }
    if (db.GetValue("rTime", timeRange)) time = RangeAt(timeRange, 0);
    if (db.GetValue("sHidden", names)) {
        hidden.clear();
        for (INT_PTR i = 0; i < names.GetSize(); ++i) hidden.emplace_back(static_cast<const char*>(names.GetAt(i)));
    }
    int stored = 0;
    if (db.GetValue("nPane", stored) && stored >= 0 && stored <= kWidestStored) pane = stored;
    db.GetValue("nColumns", widths);
    for (INT_PTR i = 0; i < widths.GetSize() && static_cast<size_t>(i) < columns.size(); ++i) {
        if (widths.GetAt(i) <= kWidestStored) columns[static_cast<size_t>(i)] = static_cast<LONG>(widths.GetAt(i));
    }
    if (db.GetValue("rSelection", parts) && parts.GetSize() == 4) {
        const Selection part{parts.GetAt(0), parts.GetAt(1), parts.GetAt(2), parts.GetAt(3)};
        if (IsPart(part.left) && IsPart(part.top) && IsPart(part.right) && IsPart(part.bottom) && part.left < part.right &&
            part.top < part.bottom)
            selection = part;
    }
    db.EndUsing();
}
