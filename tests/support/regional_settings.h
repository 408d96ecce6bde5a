// The user's regional settings for one test: what a test changes is put back when it ends, since under Wine changes outlive the
// process. Tests that use it must not run beside each other on one Wine prefix.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "platform/house_text.h"

class RegionalSettings {
public:
    RegionalSettings() = default;
    RegionalSettings(const RegionalSettings&) = delete;
    RegionalSettings& operator=(const RegionalSettings&) = delete;
    ~RegionalSettings() {
        for (const auto& [item, text] : m_saved) SetLocaleInfoA(LOCALE_USER_DEFAULT, item, text.c_str());
    }

    void Set(LCTYPE item, const char* text) {
        char old[256] = "";
        ASSERT_GT(GetLocaleInfoA(LOCALE_USER_DEFAULT, item, old, sizeof old), 0);
        m_saved.emplace(item, old);
        ASSERT_TRUE(SetLocaleInfoA(LOCALE_USER_DEFAULT, item, text)) << "item " << item << " to '" << text << "'";
    }

    // What the four countries' settings are on Windows, item by item, whatever the user's locale.
    void Swedish() {
        std::string blank;
        OrvikTextFromUtf8("\u00A0", blank);
        All(",", blank.c_str(), ";", "3;0", "yyyy-MM-dd", "HH:mm:ss", "fm", "em");
    }
    void American() { All(".", ",", ",", "3;0", "M/d/yyyy", "h:mm:ss tt", "AM", "PM"); }
    void German() { All(",", ".", ";", "3;0", "dd.MM.yyyy", "HH:mm:ss", "", ""); }
    void Indian() { All(".", ",", ",", "3;2;0", "dd-MM-yyyy", "hh:mm:ss tt", "am", "pm"); }

private:
    void All(const char* decimal, const char* thousand, const char* list, const char* grouping, const char* date,
             const char* time, const char* morning, const char* afternoon) {
        Set(LOCALE_SDECIMAL, decimal), Set(LOCALE_STHOUSAND, thousand), Set(LOCALE_SLIST, list), Set(LOCALE_SGROUPING, grouping);
        Set(LOCALE_SSHORTDATE, date), Set(LOCALE_STIMEFORMAT, time), Set(LOCALE_S1159, morning), Set(LOCALE_S2359, afternoon);
    }

    std::map<LCTYPE, std::string> m_saved;
};

// The language that texts are loaded in, for one test.
class TextLanguage {
public:
    explicit TextLanguage(WORD primary) {
        SetThreadUILanguage(MAKELANGID(primary, SUBLANG_DEFAULT));
        SetThreadLocale(MAKELCID(MAKELANGID(primary, SUBLANG_DEFAULT), SORT_DEFAULT));
    }
    ~TextLanguage() {
        SetThreadLocale(m_locale);
        SetThreadUILanguage(m_language);
    }
    TextLanguage(const TextLanguage&) = delete;
    TextLanguage& operator=(const TextLanguage&) = delete;

private:
    LANGID m_language = GetThreadUILanguage();
    LCID m_locale = GetThreadLocale();
};
