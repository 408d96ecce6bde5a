// Run-time classes, exceptions by pointer, modules, the application object and dates.
#include "afx/object.h"

#include <memory>
#include <tuple>

#include "afx/app.h"
#include "afx/array.h"
#include "afx/collections.h"
#include "afx/message_box.h"
#include "afx/module.h"
#include "afx/time.h"
#include "platform/house_text_internal.h"
#include "tests/afx/bytes.h"
#include "tests/support/dialog_fixture.h"
#include "tests/support/regional_settings.h"

using namespace afx_test;

namespace {
class CAfxAnimal : public CObject {
    DECLARE_DYNAMIC(CAfxAnimal)
};
class CAfxDog : public CAfxAnimal {
    DECLARE_DYNCREATE(CAfxDog)
};
class CAfxPuppy : public CAfxDog {
    DECLARE_SERIAL(CAfxPuppy)
};
}  // namespace

IMPLEMENT_DYNAMIC(CAfxAnimal, CObject)
IMPLEMENT_DYNCREATE(CAfxDog, CAfxAnimal)
IMPLEMENT_SERIAL(CAfxPuppy, CAfxDog, 1)

namespace {
TEST(RuntimeClass, KnowsNamesBasesAndCreation) {
    CAfxPuppy puppy;
    EXPECT_STREQ(puppy.GetRuntimeClass()->m_lpszClassName, "CAfxPuppy");
    EXPECT_EQ(puppy.GetRuntimeClass(), RUNTIME_CLASS(CAfxPuppy));
    EXPECT_EQ(puppy.GetRuntimeClass()->m_nObjectSize, static_cast<int>(sizeof(CAfxPuppy)));
    EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(CAfxAnimal)));
    EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(CAfxDog().IsKindOf(RUNTIME_CLASS(CAfxPuppy)));
    EXPECT_TRUE(puppy.IsSerializable());
    EXPECT_FALSE(CAfxDog().IsSerializable());
    EXPECT_EQ(RUNTIME_CLASS(CAfxAnimal)->CreateObject(), nullptr);
    const std::unique_ptr<CObject> made(RUNTIME_CLASS(CAfxDog)->CreateObject());
    EXPECT_NE(DYNAMIC_DOWNCAST(CAfxDog, made.get()), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CAfxPuppy, made.get()), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CAfxDog, static_cast<CObject*>(nullptr)), nullptr);
}

TEST(RuntimeClass, SerialisableClassesAreFoundByName) {
    EXPECT_EQ(CRuntimeClass::FromName("CAfxPuppy"), RUNTIME_CLASS(CAfxPuppy));
    EXPECT_EQ(CRuntimeClass::FromName("CAfxDog"), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName(nullptr), nullptr);
    for (const char* name : {"CStringArray", "CByteArray", "CWordArray", "CDWordArray", "CMapStringToOb", "CMapStringToString"}) {
        const std::unique_ptr<CObject> made(CRuntimeClass::CreateObject(name));
        ASSERT_NE(made, nullptr) << name;
        EXPECT_STREQ(made->GetRuntimeClass()->m_lpszClassName, name);
        EXPECT_EQ(made->GetRuntimeClass()->m_wSchema, 0u) << name;
    }
}

TEST(RuntimeClass, AModuleTakesItsClassesWithIt) {
    static CRuntimeClass s_class = {"CAfxPlugIn", 8, 1, nullptr, &CObject::GetThisClass, nullptr};
    static CRuntimeClass s_second = s_class;
    auto first = std::make_unique<AFX_CLASSINIT>(&s_class);
    auto second = std::make_unique<AFX_CLASSINIT>(&s_second);
    EXPECT_EQ(CRuntimeClass::FromName("CAfxPlugIn"), &s_second);
    first.reset();  // not in the order of loading
    EXPECT_EQ(CRuntimeClass::FromName("CAfxPlugIn"), &s_second);
    second.reset();
    EXPECT_EQ(CRuntimeClass::FromName("CAfxPlugIn"), nullptr);
    EXPECT_NE(CRuntimeClass::FromName("CAfxPuppy"), nullptr);
}

TEST(Exceptions, AreCaughtByBaseAndTellTheirText) {
    char text[64];
    try {
        AfxThrowOleException(E_FAIL);
    } catch (CException* failure) {
        ASSERT_TRUE(failure->IsKindOf(RUNTIME_CLASS(COleException)));
        EXPECT_EQ(static_cast<COleException*>(failure)->m_sc, E_FAIL);
        EXPECT_TRUE(failure->GetErrorMessage(text, sizeof text));
        EXPECT_STREQ(text, "The operation failed (0x80004005).");
        EXPECT_TRUE(failure->GetErrorMessage(text, 4));
        EXPECT_STREQ(text, "The");
        EXPECT_FALSE(failure->GetErrorMessage(nullptr, 0));
        failure->Delete();
    }
    try {
        AfxThrowFileException(CFileException::diskFull, 112, "x.odb");
    } catch (CFileException* failure) {
        EXPECT_TRUE(failure->GetErrorMessage(text, sizeof text));
        EXPECT_STREQ(text, "x.odb: The disk is full.");
        delete failure;
    }
    try {
        AtlThrow(E_OUTOFMEMORY);
    } catch (CMemoryException* failure) {
        failure->Delete();
    }
    CException plain;
    EXPECT_FALSE(plain.GetErrorMessage(text, sizeof text));
    EXPECT_STREQ(text, "");
}

TEST(Exceptions, SpeakTheUsersLanguage) {
    const CMemoryException memory(FALSE);
    const COleException ole(E_INVALIDARG);
    const CArchiveException archive(CArchiveException::genericException, "a.odb"), last(CArchiveException::bufferFull), other(99);
    const CFileException file(CFileException::accessDenied), end(CFileException::endOfFile);
    using Row = std::tuple<const CException*, const char*, const char*>;
    for (const auto& [failure, english, swedish] :
         {Row{&memory, "Out of memory.", "Slut p\xE5 minne."},
          Row{&ole, "The operation failed (0x80070057).", "\xC5tg\xE4rden misslyckades (0x80070057)."},
          Row{&archive, "a.odb: The file cannot be read or stored.", "a.odb: Filen kan inte l\xE4sas eller lagras."},
          Row{&last, "The file does not fit its buffer.", "Filen ryms inte i sin buffert."},
          Row{&other, "The file cannot be read or stored.", "Filen kan inte l\xE4sas eller lagras."},
          Row{&file, "Access to the file was denied.", "\xC5tkomst till filen nekades."},
          Row{&end, "The file ends too early.", "Filen slutar f\xF6r tidigt."}})
        for (const WORD language : {WORD{LANG_ENGLISH}, WORD{LANG_SWEDISH}}) {
            const TextLanguage spoken(language);
            char text[80];
            EXPECT_TRUE(failure->GetErrorMessage(text, sizeof text));
            EXPECT_EQ(text, orvik::detail::HouseFrom1252(language == LANG_SWEDISH ? swedish : english));
        }
}

TEST(Exceptions, SystemCodesHaveCauses) {
    using Row = std::tuple<LONG, int>;
    for (const auto& [code, cause] : {Row{0, CFileException::none}, Row{2, CFileException::fileNotFound},
                                      Row{3, CFileException::badPath}, Row{4, CFileException::tooManyOpenFiles},
                                      Row{5, CFileException::accessDenied}, Row{32, CFileException::sharingViolation},
                                      Row{112, CFileException::diskFull}, Row{9999, CFileException::genericException}})
        EXPECT_EQ(CFileException::OsErrorToException(code), cause) << code;
}

TEST(App, IsOneAndKnowsItsThread) {
    EXPECT_EQ(AfxGetApp(), nullptr);
    EXPECT_EQ(AfxGetMainThreadID(), GetCurrentThreadId());
    EXPECT_STREQ(AfxGetAppName(), "test_afx");
    {
        TellingApp app("Logger", IDYES);
        EXPECT_EQ(AfxGetApp(), &app);
        EXPECT_EQ(app.m_nThreadID, GetCurrentThreadId());
        EXPECT_STREQ(AfxGetAppName(), "Logger");
        ExpectInvalidArg([] { CWinApp second; });
        EXPECT_EQ(AfxGetApp(), &app);
        EXPECT_EQ(AfxMessageBox("Really?", MB_YESNO), IDYES);
        CInvalidArgException failure(FALSE);
        failure.ReportError(MB_OK | MB_ICONSTOP);
        CException().ReportError();
        EXPECT_EQ(app.told, (std::vector<std::string>{"Really?", "An argument is not valid.", "The operation failed."}));
        EXPECT_EQ(app.types[0], MB_YESNO | MB_ICONEXCLAMATION);
        EXPECT_EQ(app.types[1], static_cast<UINT>(MB_OK | MB_ICONSTOP));
    }
    EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(Module, RecordsLiveFromInitToTerm) {
    static AFX_EXTENSION_MODULE s_module = {};
    AfxTermExtensionModule(s_module);  // nothing yet
    const HMODULE self = GetModuleHandleA(nullptr);
    EXPECT_TRUE(AfxInitExtensionModule(s_module, self));
    EXPECT_TRUE(AfxInitExtensionModule(s_module, nullptr));
    EXPECT_EQ(s_module.hModule, self);
    auto* library = new CDynLinkLibrary(s_module, TRUE);
    EXPECT_TRUE(library->m_bSystem);
    EXPECT_EQ(library->m_hModule, self);
    library->m_bSystem = FALSE;
    new CDynLinkLibrary(s_module);
    AfxTermExtensionModule(s_module);  // deletes both
    EXPECT_FALSE(s_module.bInitialized);
}

TEST(Module, WhatNobodyHoldsIsLookedForInTheResourceHandle) {
    EXPECT_EQ(AfxFindResourceHandle(60000u, RT_STRING), AfxGetResourceHandle());
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEA(60000), MAKEINTRESOURCEA(6)), AfxGetResourceHandle());
    CString text = "old";
    EXPECT_FALSE(text.LoadString(60000));
    EXPECT_EQ(text, "");
    char buffer[8] = "old";
    EXPECT_EQ(AfxLoadString(60000, buffer, 8), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(Module, StateIsTheApplicationsUnlessSet) {
    EXPECT_EQ(AfxGetModuleState(), AfxGetAppModuleState());
    AFX_MODULE_STATE other;
    EXPECT_EQ(AfxSetModuleState(&other), AfxGetAppModuleState());
    EXPECT_EQ(AfxGetModuleState(), &other);
    AfxSetResourceHandle(reinterpret_cast<HINSTANCE>(4));
    EXPECT_EQ(other.m_hCurrentResourceHandle, reinterpret_cast<HINSTANCE>(4));
    EXPECT_EQ(AfxSetModuleState(nullptr), &other);
    EXPECT_NE(AfxGetResourceHandle(), reinterpret_cast<HINSTANCE>(4));
}

TEST(OleDateTime, CountsDaysFromItsEpoch) {
    struct Row {
        int year, month, day, hour, minute, second;
        double date;
        int weekday, dayOfYear;
    };
    for (const Row& c : {Row{1899, 12, 30, 0, 0, 0, 0, 7, 364}, Row{1899, 12, 29, 6, 0, 0, -1.25, 6, 363},
                         Row{1900, 1, 1, 0, 0, 0, 2, 2, 1}, Row{1970, 1, 1, 12, 0, 0, 25569.5, 5, 1},
                         Row{2000, 2, 29, 0, 0, 0, 36585, 3, 60}, Row{2000, 12, 31, 18, 0, 0, 36891.75, 1, 366},
                         Row{9999, 12, 31, 0, 0, 0, 2958465, 6, 365}, Row{100, 1, 1, 0, 0, 0, -657434, 6, 1}}) {
        const COleDateTime made(c.year, c.month, c.day, c.hour, c.minute, c.second);
        EXPECT_EQ(made.GetStatus(), COleDateTime::valid);
        EXPECT_EQ(made.m_dt, c.date);
        const COleDateTime r(c.date);
        EXPECT_EQ(std::tuple(r.GetYear(), r.GetMonth(), r.GetDay(), r.GetHour(), r.GetMinute(), r.GetSecond()),
                  std::tuple(c.year, c.month, c.day, c.hour, c.minute, c.second));
        EXPECT_EQ(std::tuple(r.GetDayOfWeek(), r.GetDayOfYear()), std::tuple(c.weekday, c.dayOfYear)) << c.date;
    }
}

TEST(OleDateTime, EverySecondOfADayComesBack) {
    for (int second = 0; second < 86400; ++second) {
        const COleDateTime time(2024, 2, 29, second / 3600, second / 60 % 60, second % 60);
        SYSTEMTIME fields;
        ASSERT_TRUE(time.GetAsSystemTime(fields));
        ASSERT_EQ(fields.wHour * 3600 + fields.wMinute * 60 + fields.wSecond, second);
        ASSERT_EQ(fields.wDay, 29);
    }
    // The last fraction of a second of a day rounds into the next one.
    const COleDateTime late(45351 + 86399.9 / 86400);
    EXPECT_EQ(std::tuple(late.GetMonth(), late.GetDay(), late.GetHour()), std::tuple(3, 1, 0));
}

TEST(OleDateTime, RefusesWhatIsNoDate) {
    for (const COleDateTime& time : {COleDateTime(2023, 2, 29, 0, 0, 0), COleDateTime(2023, 13, 1, 0, 0, 0),
                                     COleDateTime(2023, 1, 1, 24, 0, 0), COleDateTime(99, 1, 1, 0, 0, 0)})
        EXPECT_EQ(time.GetStatus(), COleDateTime::invalid);
    EXPECT_EQ(COleDateTime(1e300).GetYear(), COleDateTime::error);
    EXPECT_EQ(COleDateTime(2023, 2, 29, 0, 0, 0).GetSecond(), COleDateTime::error);
    SYSTEMTIME fields;
    EXPECT_FALSE(COleDateTime(-1e300).GetAsSystemTime(fields));
}

TEST(Time, FileTimesAreSecondsSince1970) {
    const ULONGLONG ticks = (11644473600ULL + 1234567890) * 10000000 + 9999999;
    const FILETIME utc = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    EXPECT_EQ(CTime(utc).GetTime(), 1234567890);
    EXPECT_TRUE(CTime(1) < CTime(2));
    EXPECT_TRUE(CTime() == CTime(0));
}
}  // namespace
