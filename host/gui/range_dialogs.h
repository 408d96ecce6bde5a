// The dialogs for what the axes show. House text. User-interface thread; the parent outlives them.
#pragma once

#include "host/gui/fields_dialog.h"
#include "host/gui/view_state.h"
#include "time/time_point.h"
#include "time/time_span.h"

// Both ends of a value axis, and the picture of its values' numbers.
class AxisRangeDialog : public FieldsDialog {
public:
    AxisRangeDialog(CWnd* parent, const std::string& axis, ViewRange range, const std::string& picture);
    ViewRange range;  // after OK, only what was changed is another
    std::string picture;

protected:
    void DoDataExchange(CDataExchange* exchange) override;
};

// What is shown of the times: from a date and time of day on, up to another, or for so long.
class TimeRangeDialog : public FieldsDialog {
public:
    TimeRangeDialog(CWnd* parent, CVXTTime from, CVXTTime to);
    CVXTTime from, to;  // after OK, only what was changed is another

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* exchange) override;
    void OnChoice();
    DECLARE_MESSAGE_MAP()

private:
    void Read(CDataExchange* exchange, int date, int time, CVXTTime& value);
    int m_bySpan = 0;
};
