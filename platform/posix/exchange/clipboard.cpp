#include "platform/posix/exchange/clipboard.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/posix/exchange/clipboard_forms_internal.h"
#include "platform/posix/exchange/clipboard_text_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/window/screen_exchange_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
constexpr std::chrono::seconds kPatience{2};  // with the program that has the data
constexpr UINT kFirstRegistered = 0xC000;

struct Board {
    std::mutex lock;   // held by nobody who waits
    DWORD thread = 0;  // that has it open; 0 for none
    HWND window = nullptr;
    std::map<UINT, std::string> data;  // this process's, in this clipboard's forms
    bool ours = false;                 // nobody else has copied anything since
    bool changed = false;              // since it was opened
    unsigned number = 0;               // of what is ours
    std::vector<HGLOBAL> lent;         // until it is closed
    std::vector<std::string> names;    // registered formats

    static Board& Get() {
        static Board* board = new Board;
        return *board;
    }
    bool IsMine() const { return thread != 0 && thread == GetCurrentThreadId(); }
};

UINT HtmlFormat() {
    static const UINT s_format = RegisterClipboardFormatA("HTML Format");
    return s_format;
}

// What the screen's thread answers within the time that a window's thread may wait.
template <class Answer, class Question>
Answer WaitFor(Question question) {
    const auto promise = std::make_shared<std::promise<Answer>>();
    std::future<Answer> future = promise->get_future();
    question([promise](Answer answer) { promise->set_value(std::move(answer)); });
    return future.wait_for(kPatience) == std::future_status::ready ? future.get() : Answer{};
}

std::string AskFor(ScreenExchange& exchange, CopyPlace place, CopiedForm form) {
    std::string came = WaitFor<std::string>([&](auto answer) { exchange.Ask(place, form, std::move(answer)); });
    if (came.size() > kMostCopied) came.clear();
    return came;
}

// What the process itself has in a format, made of a related one if need be.
std::string OwnData(const std::map<UINT, std::string>& data, UINT format) {
    if (const auto found = data.find(format); found != data.end()) return found->second;
    const UINT other = format == CF_TEXT ? CF_UNICODETEXT : format == CF_UNICODETEXT ? CF_TEXT : 0;
    const auto related = data.find(other);
    if (other == 0 || related == data.end()) return {};
    return format == CF_TEXT ? HouseOfCopied(related->second) : CopiedOfHouse(related->second);
}

std::string DataOfScreen(ScreenExchange& exchange, UINT format) {
    if (format == CF_TEXT || format == CF_UNICODETEXT) {
        const std::string text = AskFor(exchange, CopyPlace::Clipboard, CopiedForm::Text);
        if (text.empty()) return {};
        return format == CF_TEXT ? HouseOfCopied(CopiedOfUtf8(text)) : CopiedOfUtf8(text);
    }
    if (format == CF_DIB) return DibOfPng(AskFor(exchange, CopyPlace::Clipboard, CopiedForm::Picture));
    if (format == HtmlFormat()) return CopiedOfHtml(AskFor(exchange, CopyPlace::Clipboard, CopiedForm::Html));
    return {};
}

// In the order of their numbers.
std::vector<UINT> FormatsThere() {
    Board& board = Board::Get();
    std::vector<UINT> formats;
    ScreenExchange* const exchange = TheExchange();
    bool ours;
    {
        const std::lock_guard guard(board.lock);
        ours = exchange == nullptr || board.ours || (board.IsMine() && board.changed);
        if (ours)
            for (const auto& each : board.data) formats.push_back(each.first);
    }
    if (!ours) {
        const unsigned forms =
            WaitFor<unsigned>([&](auto answer) { exchange->AskForms(CopyPlace::Clipboard, std::move(answer)); });
        if ((forms & static_cast<unsigned>(CopiedForm::Text)) != 0) formats.push_back(CF_UNICODETEXT);
        if ((forms & static_cast<unsigned>(CopiedForm::Picture)) != 0) formats.push_back(CF_DIB);
        if ((forms & static_cast<unsigned>(CopiedForm::Html)) != 0) formats.push_back(HtmlFormat());
    }
    const auto has = [&](UINT format) { return std::find(formats.begin(), formats.end(), format) != formats.end(); };
    if (has(CF_TEXT) != has(CF_UNICODETEXT)) formats.push_back(has(CF_TEXT) ? CF_UNICODETEXT : CF_TEXT);
    std::sort(formats.begin(), formats.end());
    return formats;
}

std::shared_ptr<const CopiedData> ForOthers(const std::map<UINT, std::string>& data) {
    if (data.empty()) return nullptr;
    auto copied = std::make_shared<CopiedData>();
    copied->text = Utf8OfCopied(OwnData(data, CF_UNICODETEXT));
    copied->html = HtmlOfCopied(OwnData(data, HtmlFormat()));
    copied->png = PngOfDib(OwnData(data, CF_DIB));
    return copied;
}

HANDLE Lend(Board& board, const std::string& bytes) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    if (memory == nullptr) return nullptr;
    std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
    const std::lock_guard guard(board.lock);
    board.lent.push_back(memory);
    return memory;
}

// A thread that is no more has nothing open.
bool IsGone(DWORD thread) {
    const std::lock_guard kernel(KernelLock());
    return QueueOf(thread) == nullptr;
}
}  // namespace

bool CopyText(HWND owner, const std::string& house) {
    const std::string unicode = CopiedOfHouse(house);
    if (!OpenClipboard(owner)) return false;
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, unicode.size());
    if (memory != nullptr) {
        std::memcpy(GlobalLock(memory), unicode.data(), unicode.size());
        EmptyClipboard();
        SetClipboardData(CF_UNICODETEXT, memory);
    }
    CloseClipboard();
    return memory != nullptr;
}

std::string TextToPaste(HWND owner) {
    if (!OpenClipboard(owner)) return {};
    std::string text;
    if (const HANDLE memory = GetClipboardData(CF_TEXT)) text = static_cast<const char*>(GlobalLock(memory));
    CloseClipboard();
    return text;
}

bool HasTextToPaste() { return IsClipboardFormatAvailable(CF_UNICODETEXT) != FALSE; }

void OfferMarkedText(const std::string& house) {
    ScreenExchange* const exchange = TheExchange();
    if (exchange == nullptr || house.empty()) return;
    auto copied = std::make_shared<CopiedData>();
    copied->text = Utf8OfCopied(CopiedOfHouse(house));
    exchange->Offer(CopyPlace::Selection, std::move(copied), [] {});
}

std::string MarkedText() {
    ScreenExchange* const exchange = TheExchange();
    if (exchange == nullptr) return {};
    std::string house = HouseOfCopied(CopiedOfUtf8(AskFor(*exchange, CopyPlace::Selection, CopiedForm::Text)));
    house.pop_back();
    return house;
}

}  // namespace orvik::detail

using namespace orvik::detail;

BOOL OpenClipboard(HWND owner) {
    CurrentQueue();  // by which it is known that this thread is there
    Board& board = Board::Get();
    const std::lock_guard guard(board.lock);
    const bool free = board.thread == 0 || (board.IsMine() && board.window == owner) || IsGone(board.thread);
    if (!free) return Finish(ERROR_ACCESS_DENIED);
    board.thread = GetCurrentThreadId();
    board.window = owner;
    board.changed = false;
    return TRUE;
}

BOOL EmptyClipboard() {
    Board& board = Board::Get();
    const std::lock_guard guard(board.lock);
    if (!board.IsMine()) return Finish(ERROR_CLIPBOARD_NOT_OPEN);
    board.data.clear();
    board.changed = true;
    return TRUE;
}

BOOL CloseClipboard() {
    Board& board = Board::Get();
    std::shared_ptr<const CopiedData> data;
    unsigned number = 0;
    bool changed = false;
    std::vector<HGLOBAL> lent;
    ScreenExchange* const exchange = TheExchange();
    std::map<UINT, std::string> copied;
    {
        const std::lock_guard guard(board.lock);
        if (!board.IsMine()) return Finish(ERROR_CLIPBOARD_NOT_OPEN);
        board.thread = 0;
        lent.swap(board.lent);
        changed = std::exchange(board.changed, false);
        if (changed) {
            board.ours = true;
            number = ++board.number;
            if (exchange != nullptr) copied = board.data;
        }
    }
    for (const HGLOBAL each : lent) GlobalFree(each);
    if (!changed || exchange == nullptr) return TRUE;
    exchange->Offer(CopyPlace::Clipboard, ForOthers(copied), [number] {
        Board& now = Board::Get();
        const std::lock_guard guard(now.lock);
        if (now.number != number) return;  // another offer of ours
        now.ours = false;
        now.data.clear();
    });
    return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE memory) {
    Board& board = Board::Get();
    const void* const bytes = memory != nullptr && format != 0 ? GlobalLock(memory) : nullptr;
    if (bytes == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const std::lock_guard guard(board.lock);
    if (!board.IsMine()) {
        SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
        return nullptr;
    }
    board.data[format].assign(static_cast<const char*>(bytes), GlobalSize(memory));
    board.changed = true;
    board.lent.push_back(memory);
    return memory;
}

HANDLE GetClipboardData(UINT format) {
    Board& board = Board::Get();
    ScreenExchange* const exchange = TheExchange();
    std::string bytes;
    bool ours;
    {
        const std::lock_guard guard(board.lock);
        if (!board.IsMine()) {
            SetLastError(ERROR_CLIPBOARD_NOT_OPEN);
            return nullptr;
        }
        ours = exchange == nullptr || board.ours || board.changed;
        if (ours) bytes = OwnData(board.data, format);
    }
    if (!ours) bytes = DataOfScreen(*exchange, format);
    if (bytes.empty()) {
        SetLastError(ERROR_NOT_FOUND);
        return nullptr;
    }
    return Lend(board, bytes);
}

BOOL IsClipboardFormatAvailable(UINT format) {
    const std::vector<UINT> formats = FormatsThere();
    return std::find(formats.begin(), formats.end(), format) != formats.end();
}

int CountClipboardFormats() { return static_cast<int>(FormatsThere().size()); }

UINT EnumClipboardFormats(UINT format) {
    const std::vector<UINT> formats = FormatsThere();
    const auto next = std::upper_bound(formats.begin(), formats.end(), format);
    SetLastError(ERROR_SUCCESS);
    return next == formats.end() ? 0 : *next;
}

UINT RegisterClipboardFormatA(LPCSTR name) {
    if (name == nullptr || *name == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    Board& board = Board::Get();
    const std::lock_guard guard(board.lock);
    auto& names = board.names;
    const auto same = [&](const std::string& each) { return CompareNoCase(each, name) == 0; };
    auto found = std::find_if(names.begin(), names.end(), same);
    if (found == names.end()) found = names.insert(names.end(), name);
    return kFirstRegistered + static_cast<UINT>(found - names.begin());
}
