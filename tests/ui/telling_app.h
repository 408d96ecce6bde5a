// An application that keeps what its user would have been told.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "afx/app.h"

class TellingApp : public CWinApp {
public:
    TellingApp() : CWinApp("Disk test") {}
    int DoMessageBox(LPCSTR prompt, UINT type, UINT) override {
        EXPECT_EQ(type, UINT{MB_ICONHAND});
        told.emplace_back(prompt);
        return IDOK;
    }
    // The one message since the last call.
    std::string Told() {
        EXPECT_EQ(told.size(), 1u);
        const std::string text = told.empty() ? "" : told.back();
        told.clear();
        return text;
    }

    std::vector<std::string> told;
};
