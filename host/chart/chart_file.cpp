#include "host/chart/chart_file.h"

#include <algorithm>

#include "host/chart/chart_view.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "platform/letters.h"
#include "platform/picture.h"
#include "time/number_text.h"

void RequirePictureName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    if (end != ".png" && end != ".svg" && end != ".pdf") throw Failure{kWrongUse, Say(Text::NotAPictureName, {ToUtf8(path)})};
    const std::string name = path.substr(path.find_last_of("/\\") + 1);  // from the beginning where there is none
    if (name.size() == 4) throw Failure{kWrongUse, Say(Text::NamelessPicture, {ToUtf8(name)})};
}

void RequirePictureSize(const std::string& path, SIZE size) {
    CString end = path.substr(path.size() - 4).c_str();
    end.MakeLower();
    if (end == ".png" && static_cast<__int64>(size.cx) * size.cy > kOrvikPicturePixels)
        throw Failure{kWrongUse, Say(Text::PictureTooLarge, {std::to_string(kOrvikPicturePixels)})};
}

void TellLettersWithoutFont(const ChartModel& model) {
    std::string texts = model.Title();
    for (const ChartModel::Series& series : model.AllSeries()) texts += series.name;
    for (const ChartTag& tag : model.Tags()) texts += tag.text;
    CString digits("0123456789");
    NlsToOwnDigits(digits);
    texts += digits.GetString();
    const std::string times = TimeTextOf(model.First()) + TimeTextOf(model.Last());
    const std::string without = OrvikLettersWithoutFont(ToUtf8(texts) + times);
    if (!without.empty()) PrintError(Say(Text::NoFontHas, {without}));
}

bool WriteChart(ChartModel& model, const std::string& path, SIZE size) {
    const auto fail = [&](DWORD error) { throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})}; };
    const HDC picture = OrvikBeginPicture(path.c_str(), size.cx, size.cy);
    if (picture == nullptr) {
        const DWORD error = GetLastError();
        if (error == ERROR_NOT_ENOUGH_MEMORY) throw Failure{kFileFailed, Say(Text::NoMemory)};
        fail(error);
    }
    bool tells = true;
    {
        CDC dc;
        dc.Attach(picture);
        dc.m_bPrinting = OrvikIsPrinting(picture);
        ChartView view(model);
        view.Draw(dc, {0, 0, size.cx, size.cy});
        tells = view.TellsWhatIsMissing();
        dc.Detach();
    }
    if (!OrvikEndPicture(picture, TRUE)) fail(GetLastError());
    return tells;
}
