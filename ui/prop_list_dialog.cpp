#include "ui/prop_list_dialog.h"

#include "res/ids.h"

IMPLEMENT_DYNAMIC(CPopupDialog, CBCGPDialog)
IMPLEMENT_DYNAMIC(CPropListDialog, CPopupDialog)

BEGIN_MESSAGE_MAP(CPropListDialog, CPopupDialog)
ON_COMMAND(IDC_ORVIK_CLOSE, OnClose3)
ON_REGISTERED_MESSAGE(BCGM_PROPERTY_CHANGED, OnBcgmPropertyChanged)
END_MESSAGE_MAP()

namespace {
// Rows that the header and the description take.
constexpr int kOtherRows = 5;

CString Resource(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}
}  // namespace

CPropListDialog::CPropListDialog(CWnd* parent) : CPopupDialog(IDD_ORVIK_PROPERTIES, parent) {}

void CPropListDialog::DoDataExchange(CDataExchange* pDX) {
    CPopupDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_ORVIK_GRID_PLACE, m_wndPropListLocation);
}

BOOL CPropListDialog::OnInitDialog() {
    CPopupDialog::OnInitDialog();
    if (m_nTitleID != static_cast<UINT>(-1)) {
        CString title;
        title.Format(Resource(IDS_PROPERTIES_OF), Resource(m_nTitleID).GetString());
        SetWindowText(title);
    }
    CRect place;
    m_wndPropListLocation.GetClientRect(place);
    m_wndPropListLocation.MapWindowPoints(this, place);
    m_wndPropList.Create(WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP, place, this, IDC_ORVIK_GRID);
    // First in the tab order, before the buttons.
    m_wndPropListLocation.ShowWindow(SW_HIDE);
    m_wndPropList.SetWindowPos(&CWnd::wndTop, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    m_wndPropList.EnableHeaderCtrl(TRUE, Resource(IDS_PROPERTY), Resource(IDS_VALUE));
    m_wndPropList.EnableDescriptionArea();
    m_wndPropList.SetVSDotNetLook();
    m_wndPropList.MarkModifiedProperties();
    m_wndPropList.EnableContextMenu();
    if (CBCGPStaticLayout* layout = GetLayout()) {
        layout->AddAnchor(m_wndPropList.m_hWnd, CBCGPStaticLayout::e_MoveTypeNone, CBCGPStaticLayout::e_SizeTypeBoth,
                          CPoint(100, 100), CSize(100, 100));
        for (const UINT id : {UINT{IDOK}, UINT{IDC_ORVIK_CLOSE}})
            layout->AddAnchor(id, CBCGPStaticLayout::e_MoveTypeBoth, CBCGPStaticLayout::e_SizeTypeNone, CPoint(100, 100));
        // The grid may be made smaller, to what AdjustWindowSize gives one without rows.
        CRect window;
        GetWindowRect(window);
        layout->SetMinSize(CSize(window.Width(), window.Height() - place.Height() + kOtherRows * m_wndPropList.GetRowHeight()));
    }
    return TRUE;
}

void CPropListDialog::OnOK() {
    if (m_wndPropList.EndEditItem()) CPopupDialog::OnOK();
}

void CPropListDialog::AdjustWindowSize() {
    int rows = kOtherRows;
    for (int i = 0; i < m_wndPropList.GetPropertyCount(); ++i) rows += m_wndPropList.GetProperty(i)->CountWithSubItems();
    CRect grid, window;
    m_wndPropList.GetWindowRect(grid);
    GetWindowRect(window);
    window.bottom += rows * m_wndPropList.GetRowHeight() - grid.Height();
    MoveWindow(window, TRUE);
}

void CPropListDialog::OnPropertyChanged(DWORD_PTR) {}

LRESULT CPropListDialog::OnBcgmPropertyChanged(WPARAM wParam, LPARAM lParam) {
    if (wParam == IDC_ORVIK_GRID && lParam != 0) OnPropertyChanged(reinterpret_cast<const CBCGPProp*>(lParam)->GetData());
    return 0;
}
