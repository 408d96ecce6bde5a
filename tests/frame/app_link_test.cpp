#include "frame/app_link.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/family_views.h"

namespace {

// A view as a plug-in has one; the framework's destructors delete it.
class TestView : public CView {};

class TestFamily : public IDeviceFamily {
public:
    CView* CreateView() override { return m_view; }
    CView* m_view = nullptr;
};

class TestHost : public IOrvikApp {
public:
    void Trace(const char*, ...) override {}
    IDeviceFamily* FindDeviceFamily(const char* family) override {
        m_asked.push_back(family);
        return m_family;
    }
    int IsCommTraceEnabled() override { return 0; }

    std::vector<std::string> m_asked;
    IDeviceFamily* m_family = nullptr;
};

class AppLink : public testing::Test {
protected:
    void TearDown() override { Connect2Application(nullptr); }
    TestHost m_host;
    TestFamily m_family;
};

}  // namespace

TEST_F(AppLink, KeepsTheHostsObject) {
    EXPECT_EQ(GetOrvikApp(), nullptr);
    EXPECT_EQ(Connect2Application(&m_host), 1);
    EXPECT_EQ(GetOrvikApp(), &m_host);
    EXPECT_EQ(Connect2Application(nullptr), 1);
    EXPECT_EQ(GetOrvikApp(), nullptr);
}

TEST_F(AppLink, FamilyViewsComeFromTheHostsFactory) {
    CRuntimeClass* const classes[] = {RUNTIME_CLASS(CCedarViewBase), RUNTIME_CLASS(CModbusViewBase),
                                      RUNTIME_CLASS(COPCClientViewBase), RUNTIME_CLASS(CAlderViewBase),
                                      RUNTIME_CLASS(CBirchViewBase)};
    for (CRuntimeClass* view : classes) EXPECT_EQ(view->CreateObject(), nullptr);  // no host
    Connect2Application(&m_host);
    for (CRuntimeClass* view : classes) EXPECT_EQ(view->CreateObject(), nullptr);  // no such family
    const std::vector<std::string> names = {"Cedar", "Modbus", "OPCClient", "Alder", "Birch"};
    EXPECT_EQ(m_host.m_asked, names);
    m_host.m_family = &m_family;
    EXPECT_EQ(classes[0]->CreateObject(), nullptr);  // a factory without a view
    for (CRuntimeClass* view : classes) {
        m_family.m_view = new TestView;
        CObject* const made = view->CreateObject();
        EXPECT_EQ(made, m_family.m_view);
        delete made;
    }
    EXPECT_STREQ(RUNTIME_CLASS(COPCClientViewBase)->m_lpszClassName, "COPCClientViewBase");
    EXPECT_TRUE(RUNTIME_CLASS(CCedarViewBase)->IsDerivedFrom(RUNTIME_CLASS(CView)));
}
