#include "toolkit/bcgp_controls.h"

IMPLEMENT_DYNAMIC(CBCGPStatic, CStatic)
IMPLEMENT_DYNAMIC(CBCGPButton, CButton)
IMPLEMENT_DYNAMIC(CBCGPProgressCtrl, CProgressCtrl)
