#include "afx/view.h"

IMPLEMENT_DYNAMIC(CView, CWnd)
