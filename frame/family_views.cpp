#include "frame/family_views.h"

#include "frame/app_link.h"

namespace {
CObject* FamilyView(const char* family) {
    IOrvikApp* app = GetOrvikApp();
    IDeviceFamily* factory = app ? app->FindDeviceFamily(family) : nullptr;
    return factory ? factory->CreateView() : nullptr;
}
}  // namespace

CAlderViewBase::CAlderViewBase() = default;
CObject* CAlderViewBase::CreateObject() { return FamilyView("Alder"); }
IMPLEMENT_RUNTIMECLASS(CAlderViewBase, CView, 0xFFFF, &CAlderViewBase::CreateObject)

CBirchViewBase::CBirchViewBase() = default;
CObject* CBirchViewBase::CreateObject() { return FamilyView("Birch"); }
IMPLEMENT_RUNTIMECLASS(CBirchViewBase, CView, 0xFFFF, &CBirchViewBase::CreateObject)

CCedarViewBase::CCedarViewBase() = default;
CObject* CCedarViewBase::CreateObject() { return FamilyView("Cedar"); }
IMPLEMENT_RUNTIMECLASS(CCedarViewBase, CView, 0xFFFF, &CCedarViewBase::CreateObject)

CModbusViewBase::CModbusViewBase() = default;
CObject* CModbusViewBase::CreateObject() { return FamilyView("Modbus"); }
IMPLEMENT_RUNTIMECLASS(CModbusViewBase, CView, 0xFFFF, &CModbusViewBase::CreateObject)

COPCClientViewBase::COPCClientViewBase() = default;
CObject* COPCClientViewBase::CreateObject() { return FamilyView("OPCClient"); }
IMPLEMENT_RUNTIMECLASS(COPCClientViewBase, CView, 0xFFFF, &COPCClientViewBase::CreateObject)
