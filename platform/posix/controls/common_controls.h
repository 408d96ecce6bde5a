// The common controls' styles, messages, structures and notifications: "msctls_progress32", "SysHeader32",
// "SysListView32" (report view) and "tooltips_class32". They are windows like any other and live by their messages, which do what
// their documentation says.
#pragma once

#include <stddef.h>

#include "platform/posix/controls/controls.h"
#include "platform/posix/window/window_place.h"

struct INITCOMMONCONTROLSEX {
    DWORD dwSize;
    DWORD dwICC;
};
#define ICC_LISTVIEW_CLASSES 0x00000001u
#define ICC_BAR_CLASSES 0x00000004u
#define ICC_PROGRESS_CLASS 0x00000020u
#define ICC_WIN95_CLASSES 0x000000FFu
#define ICC_STANDARD_CLASSES 0x00004000u
// The classes are always there. FALSE for a structure of another size.
ORVIK_API BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX* classes);

#define NM_FIRST (0u - 0u)
#define NM_CLICK (0u - 2u)
#define NM_DBLCLK (0u - 3u)
#define NM_RETURN (0u - 4u)
#define NM_RCLICK (0u - 5u)
#define NM_SETFOCUS (0u - 7u)
#define NM_KILLFOCUS (0u - 8u)
#define NM_CUSTOMDRAW (0u - 12u)

#define CLR_NONE 0xFFFFFFFFu
#define CLR_DEFAULT 0xFF000000u

// Custom draw.
#define CDDS_PREPAINT 0x00000001u
#define CDDS_POSTPAINT 0x00000002u
#define CDDS_ITEM 0x00010000u
#define CDDS_ITEMPREPAINT (CDDS_ITEM | CDDS_PREPAINT)
#define CDDS_ITEMPOSTPAINT (CDDS_ITEM | CDDS_POSTPAINT)
#define CDDS_SUBITEM 0x00020000u
#define CDRF_DODEFAULT 0x00000000
#define CDRF_NEWFONT 0x00000002
#define CDRF_SKIPDEFAULT 0x00000004
#define CDRF_NOTIFYPOSTPAINT 0x00000010
#define CDRF_NOTIFYITEMDRAW 0x00000020
#define CDRF_NOTIFYSUBITEMDRAW 0x00000020
#define CDIS_SELECTED 0x0001u
#define CDIS_FOCUS 0x0010u
struct NMCUSTOMDRAW {
    NMHDR hdr;
    DWORD dwDrawStage;
    HDC hdc;
    RECT rc;
    DWORD_PTR dwItemSpec;
    UINT uItemState;
    LPARAM lItemlParam;
};

// Progress.
#define PROGRESS_CLASSA "msctls_progress32"
#define PBS_SMOOTH 0x01u
#define PBS_VERTICAL 0x04u
#define PBM_SETRANGE (WM_USER + 1)
#define PBM_SETPOS (WM_USER + 2)
#define PBM_DELTAPOS (WM_USER + 3)
#define PBM_SETSTEP (WM_USER + 4)
#define PBM_STEPIT (WM_USER + 5)
#define PBM_SETRANGE32 (WM_USER + 6)
#define PBM_GETRANGE (WM_USER + 7)
#define PBM_GETPOS (WM_USER + 8)
#define PBM_SETBARCOLOR (WM_USER + 9)
#define PBM_GETSTEP (WM_USER + 13)
#define PBM_GETBKCOLOR (WM_USER + 14)
#define PBM_GETBARCOLOR (WM_USER + 15)
#define PBM_SETBKCOLOR 0x2001u
struct PBRANGE {
    int iLow;
    int iHigh;
};

// Header.
#define WC_HEADERA "SysHeader32"
#define HDS_HORZ 0x0000u
#define HDS_BUTTONS 0x0002u
#define HDS_HIDDEN 0x0008u
#define HDS_FULLDRAG 0x0080u
#define HDI_WIDTH 0x0001u
#define HDI_HEIGHT HDI_WIDTH
#define HDI_TEXT 0x0002u
#define HDI_FORMAT 0x0004u
#define HDI_LPARAM 0x0008u
#define HDF_LEFT 0x0000
#define HDF_RIGHT 0x0001
#define HDF_CENTER 0x0002
#define HDF_JUSTIFYMASK 0x0003
#define HDF_STRING 0x4000
struct HDITEMA {
    UINT mask;
    int cxy;
    LPSTR pszText;
    HBITMAP hbm;
    int cchTextMax;
    int fmt;
    LPARAM lParam;
    int iImage;
    int iOrder;
    UINT type;
    void* pvFilter;
    UINT state;
};
struct HDLAYOUT {
    RECT* prc;
    WINDOWPOS* pwpos;
};
struct HDHITTESTINFO {
    POINT pt;
    UINT flags;
    int iItem;
};
#define HHT_NOWHERE 0x0001u
#define HHT_ONHEADER 0x0002u
#define HHT_ONDIVIDER 0x0004u
#define HDM_GETITEMCOUNT 0x1200u
#define HDM_INSERTITEMA 0x1201u
#define HDM_DELETEITEM 0x1202u
#define HDM_GETITEMA 0x1203u
#define HDM_SETITEMA 0x1204u
#define HDM_HITTEST 0x1206u
#define HDM_GETITEMRECT 0x1207u
struct NMHEADERA {
    NMHDR hdr;
    int iItem;
    int iButton;
    HDITEMA* pitem;
};
#define HDN_ITEMCHANGINGA (0u - 300u)
#define HDN_ITEMCHANGEDA (0u - 301u)
#define HDN_ITEMCLICKA (0u - 302u)
#define HDN_BEGINTRACKA (0u - 306u)
#define HDN_ENDTRACKA (0u - 307u)
#define HDN_TRACKA (0u - 308u)

// List view.
#define WC_LISTVIEWA "SysListView32"
#define LVS_ICON 0x0000u
#define LVS_REPORT 0x0001u
#define LVS_TYPEMASK 0x0003u
#define LVS_SINGLESEL 0x0004u
#define LVS_SHOWSELALWAYS 0x0008u
#define LVS_SORTASCENDING 0x0010u
#define LVS_SORTDESCENDING 0x0020u
#define LVS_OWNERDATA 0x1000u
#define LVS_NOCOLUMNHEADER 0x4000u
#define LVS_NOSORTHEADER 0x8000u
#define LVS_EX_GRIDLINES 0x00000001u
#define LVS_EX_FULLROWSELECT 0x00000020u
#define LVS_EX_DOUBLEBUFFER 0x00010000u

#define LVM_FIRST 0x1000u
#define LVM_GETBKCOLOR (LVM_FIRST + 0)
#define LVM_SETBKCOLOR (LVM_FIRST + 1)
#define LVM_GETITEMCOUNT (LVM_FIRST + 4)
#define LVM_GETITEMA (LVM_FIRST + 5)
#define LVM_SETITEMA (LVM_FIRST + 6)
#define LVM_INSERTITEMA (LVM_FIRST + 7)
#define LVM_DELETEITEM (LVM_FIRST + 8)
#define LVM_DELETEALLITEMS (LVM_FIRST + 9)
#define LVM_GETNEXTITEM (LVM_FIRST + 12)
#define LVM_FINDITEMA (LVM_FIRST + 13)
#define LVM_GETITEMRECT (LVM_FIRST + 14)
#define LVM_HITTEST (LVM_FIRST + 18)
#define LVM_ENSUREVISIBLE (LVM_FIRST + 19)
#define LVM_SCROLL (LVM_FIRST + 20)
#define LVM_REDRAWITEMS (LVM_FIRST + 21)
#define LVM_GETCOLUMNA (LVM_FIRST + 25)
#define LVM_SETCOLUMNA (LVM_FIRST + 26)
#define LVM_INSERTCOLUMNA (LVM_FIRST + 27)
#define LVM_DELETECOLUMN (LVM_FIRST + 28)
#define LVM_GETCOLUMNWIDTH (LVM_FIRST + 29)
#define LVM_SETCOLUMNWIDTH (LVM_FIRST + 30)
#define LVM_GETHEADER (LVM_FIRST + 31)
#define LVM_GETTEXTCOLOR (LVM_FIRST + 35)
#define LVM_SETTEXTCOLOR (LVM_FIRST + 36)
#define LVM_GETTEXTBKCOLOR (LVM_FIRST + 37)
#define LVM_SETTEXTBKCOLOR (LVM_FIRST + 38)
#define LVM_GETTOPINDEX (LVM_FIRST + 39)
#define LVM_GETCOUNTPERPAGE (LVM_FIRST + 40)
#define LVM_UPDATE (LVM_FIRST + 42)
#define LVM_SETITEMSTATE (LVM_FIRST + 43)
#define LVM_GETITEMSTATE (LVM_FIRST + 44)
#define LVM_GETITEMTEXTA (LVM_FIRST + 45)
#define LVM_SETITEMTEXTA (LVM_FIRST + 46)
#define LVM_SETITEMCOUNT (LVM_FIRST + 47)
#define LVM_SORTITEMS (LVM_FIRST + 48)
#define LVM_GETSELECTEDCOUNT (LVM_FIRST + 50)
#define LVM_SETEXTENDEDLISTVIEWSTYLE (LVM_FIRST + 54)
#define LVM_GETEXTENDEDLISTVIEWSTYLE (LVM_FIRST + 55)
#define LVM_GETSUBITEMRECT (LVM_FIRST + 56)
#define LVM_SUBITEMHITTEST (LVM_FIRST + 57)
#define LVM_GETSELECTIONMARK (LVM_FIRST + 66)
#define LVM_SETSELECTIONMARK (LVM_FIRST + 67)

#define LVIF_TEXT 0x0001u
#define LVIF_IMAGE 0x0002u
#define LVIF_PARAM 0x0004u
#define LVIF_STATE 0x0008u
#define LVIS_FOCUSED 0x0001u
#define LVIS_SELECTED 0x0002u
#define LVIS_CUT 0x0004u
#define LVIS_DROPHILITED 0x0008u
#define LPSTR_TEXTCALLBACKA (reinterpret_cast<LPSTR>(static_cast<INT_PTR>(-1)))
struct LVITEMA {
    UINT mask;
    int iItem;
    int iSubItem;
    UINT state;
    UINT stateMask;
    LPSTR pszText;
    int cchTextMax;
    int iImage;
    LPARAM lParam;
    int iIndent;
    int iGroupId;
    UINT cColumns;
    UINT* puColumns;
    int* piColFmt;
    int iGroup;
};
#define LVNI_ALL 0x0000u
#define LVNI_FOCUSED 0x0001u
#define LVNI_SELECTED 0x0002u
#define LVNI_ABOVE 0x0100u
#define LVNI_BELOW 0x0200u
#define LVFI_PARAM 0x0001u
#define LVFI_STRING 0x0002u
#define LVFI_PARTIAL 0x0008u
#define LVFI_WRAP 0x0020u
struct LVFINDINFOA {
    UINT flags;
    LPCSTR psz;
    LPARAM lParam;
    POINT pt;
    UINT vkDirection;
};
#define LVIR_BOUNDS 0
#define LVIR_ICON 1
#define LVIR_LABEL 2
#define LVHT_NOWHERE 0x0001u
#define LVHT_ONITEMICON 0x0002u
#define LVHT_ONITEMLABEL 0x0004u
#define LVHT_ONITEM 0x000Eu
#define LVHT_ABOVE 0x0008u
#define LVHT_BELOW 0x0010u
#define LVHT_TORIGHT 0x0020u
#define LVHT_TOLEFT 0x0040u
struct LVHITTESTINFO {
    POINT pt;
    UINT flags;
    int iItem;
    int iSubItem;
    int iGroup;
};
#define LVCF_FMT 0x0001u
#define LVCF_WIDTH 0x0002u
#define LVCF_TEXT 0x0004u
#define LVCF_SUBITEM 0x0008u
#define LVCFMT_LEFT 0x0000
#define LVCFMT_RIGHT 0x0001
#define LVCFMT_CENTER 0x0002
#define LVCFMT_JUSTIFYMASK 0x0003
struct LVCOLUMNA {
    UINT mask;
    int fmt;
    int cx;
    LPSTR pszText;
    int cchTextMax;
    int iSubItem;
    int iImage;
    int iOrder;
    int cxMin;
    int cxDefault;
    int cxIdeal;
};
#define LVSCW_AUTOSIZE (-1)
#define LVSCW_AUTOSIZE_USEHEADER (-2)
using PFNLVCOMPARE = int(CALLBACK*)(LPARAM, LPARAM, LPARAM);
struct NMLISTVIEW {
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
};
struct NMITEMACTIVATE {
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
    UINT uKeyFlags;
};
struct NMLVDISPINFOA {
    NMHDR hdr;
    LVITEMA item;
};
struct NMLVKEYDOWN {
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};
struct NMLVCUSTOMDRAW {
    NMCUSTOMDRAW nmcd;
    COLORREF clrText;
    COLORREF clrTextBk;
    int iSubItem;
    DWORD dwItemType;
    COLORREF clrFace;
    int iIconEffect;
    int iIconPhase;
    int iPartId;
    int iStateId;
    RECT rcText;
    UINT uAlign;
};
#define LVN_ITEMCHANGING (0u - 100u)
#define LVN_ITEMCHANGED (0u - 101u)
#define LVN_INSERTITEM (0u - 102u)
#define LVN_DELETEITEM (0u - 103u)
#define LVN_DELETEALLITEMS (0u - 104u)
#define LVN_COLUMNCLICK (0u - 108u)
#define LVN_ITEMACTIVATE (0u - 114u)
#define LVN_GETDISPINFOA (0u - 150u)
#define LVN_KEYDOWN (0u - 155u)

// Tool tips. A tool is a window (TTF_IDISHWND) or a rectangle in one; its text is given, is the number of a module's string, or
// is asked for by TTN_GETDISPINFO each time (LPSTR_TEXTCALLBACK). With TTF_SUBCLASS the tip sees by itself what the windows of
// its thread read from their queue; else its owner relays that. Below the tool, beside the pointer; several lines once a width is
// set. Delays are milliseconds.
#define TOOLTIPS_CLASSA "tooltips_class32"
#define TTS_ALWAYSTIP 0x01u
#define TTS_NOPREFIX 0x02u
#define TTF_IDISHWND 0x0001u
#define TTF_CENTERTIP 0x0002u
#define TTF_SUBCLASS 0x0010u
#define TTF_TRANSPARENT 0x0100u
#define TTDT_AUTOMATIC 0
#define TTDT_RESHOW 1
#define TTDT_AUTOPOP 2
#define TTDT_INITIAL 3
#define TTM_ACTIVATE (WM_USER + 1)
#define TTM_SETDELAYTIME (WM_USER + 3)
#define TTM_ADDTOOLA (WM_USER + 4)
#define TTM_DELTOOLA (WM_USER + 5)
#define TTM_NEWTOOLRECTA (WM_USER + 6)
#define TTM_RELAYEVENT (WM_USER + 7)
#define TTM_GETTOOLINFOA (WM_USER + 8)
#define TTM_GETTEXTA (WM_USER + 11)
#define TTM_UPDATETIPTEXTA (WM_USER + 12)
#define TTM_GETTOOLCOUNT (WM_USER + 13)
#define TTM_GETDELAYTIME (WM_USER + 21)
#define TTM_SETMAXTIPWIDTH (WM_USER + 24)
#define TTM_GETMAXTIPWIDTH (WM_USER + 25)
#define TTM_POP (WM_USER + 28)
#define TTN_GETDISPINFOA (0u - 520u)
#define TTN_NEEDTEXTA TTN_GETDISPINFOA
#define TTN_SHOW (0u - 521u)
#define TTN_POP (0u - 522u)
struct TTTOOLINFOA {
    UINT cbSize;
    UINT uFlags;
    HWND hwnd;
    UINT_PTR uId;
    RECT rect;
    HINSTANCE hinst;
    LPSTR lpszText;
    LPARAM lParam;
    void* lpReserved;
};
using TOOLINFOA = TTTOOLINFOA;
#define TTTOOLINFOA_V1_SIZE static_cast<UINT>(offsetof(TTTOOLINFOA, lParam))
#define TTTOOLINFOA_V2_SIZE static_cast<UINT>(offsetof(TTTOOLINFOA, lpReserved))
struct NMTTDISPINFOA {
    NMHDR hdr;
    LPSTR lpszText;
    char szText[80];
    HINSTANCE hinst;
    UINT uFlags;
    LPARAM lParam;
};
using TOOLTIPTEXTA = NMTTDISPINFOA;
