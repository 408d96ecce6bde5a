// The dialogs that stand before work: a picture of the chart, a download of so many readings. House text. User-interface thread;
// the parent outlives them.
#pragma once

#include "host/gui/fields_dialog.h"
#include "time/time_span.h"

// Where a picture goes, its size and its kind, which is told by the end of its name.
class PictureDialog : public FieldsDialog {
public:
    PictureDialog(CWnd* parent, const std::string& path, SIZE size);
    CString path;
    UINT width, height;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* exchange) override;
    void OnBrowse();
    void OnKind();
    DECLARE_MESSAGE_MAP()

private:
    int m_kind = 0;
};

class DownloadDialog : public FieldsDialog {
public:
    DownloadDialog(CWnd* parent, const std::string& port, UINT count, CVXTTimeSpan interval);
    CString port;
    UINT count;
    CVXTTimeSpan interval;

protected:
    void DoDataExchange(CDataExchange* exchange) override;
};
