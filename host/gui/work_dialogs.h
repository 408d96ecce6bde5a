// The dialogs that stand before work: a picture of the chart, readings as text, a download of so many readings. House text.
// User-interface thread; the parent outlives them.
#pragma once

#include "afx/dc.h"
#include "host/app/host_app.h"
#include "host/gui/fields_dialog.h"
#include "host/gui/tool_tips.h"
#include "host/logger_family.h"
#include "host/words/texts.h"
#include "time/time_span.h"

// One that asks where a file goes, by name or by the system's question.
class SavingDialog : public FieldsDialog {
public:
    CString path;
    // The system's question has asked whether this file may be replaced.
    bool IsAgreed() const { return path == m_agreed; }

protected:
    SavingDialog(UINT id, CWnd* parent, std::vector<int> fields, const std::string& first)
        : FieldsDialog(id, parent, std::move(fields)), path(first.c_str()) {}
    BOOL OnInitDialog() override;
    // Asks for the field's file; see AskFileToSave. False when the user gives up.
    bool Browse(Text title, const std::string& kinds, const std::string& extension, DWORD kind);
    // The field's file, once it is named and its folder is there.
    void RefuseFile(CDataExchange* exchange, const CString& name) const;

private:
    CString m_agreed;
};

// Where a picture goes, its size and its kind, which is told by the end of its name.
class PictureDialog : public SavingDialog {
public:
    PictureDialog(CWnd* parent, const std::string& path, SIZE size);
    UINT width, height;

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    void OnBrowse();
    void OnKind();
    DECLARE_MESSAGE_MAP()

private:
    int Kind() const;  // that is chosen
    int m_kind = 0;
};

// Where readings go as text, in which form, and which of them.
class ExportDialog : public SavingDialog {
public:
    ExportDialog(CWnd* parent, const std::string& path);
    bool ForSpreadsheets() const { return m_form == 1; }
    bool ShownOnly() const { return m_part == 1; }

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    void OnBrowse();
    DECLARE_MESSAGE_MAP()

private:
    int m_form = 0, m_part = 0;
};

// Which logger is downloaded, by which description; a reading can be tried before.
class DownloadDialog : public FieldsDialog {
public:
    // The descriptions that are offered besides. The application outlives the dialog.
    DownloadDialog(CWnd* parent, CHostApp& app, std::vector<std::string> descriptions);
    CString description;  // a file; empty: the embedded one
    CString port;
    UINT count = 10;
    CVXTTimeSpan interval;
    DWORD timeout = 1000;  // ms, of what is tried
    std::string busyPort;  // of a download that is running; empty without

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* exchange) override;
    void OnCancel() override;
    void OnBrowse();
    void OnTest();
    void OnPortsDrop();
    DECLARE_MESSAGE_MAP()

private:
    std::string Try();
    void FillPorts();

    CHostApp& m_app;
    const std::vector<std::string> m_descriptions;
    ToolTips m_tips;
    CFont m_columns;             // of what Test has read
    ILogger* m_tried = nullptr;  // while it is read
    bool m_stop = false;
};
