// What the loggers of one line know together, such as what is still owed on it. Lines are those that one thread has open under
// one address; a book lasts as long as anybody holds it. Any thread; what is in a book is its thread's own.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "platform/win32.h"

namespace orvik {

// The book of that kind of this thread's line, or a new one.
template <class Book>
std::shared_ptr<Book> BookOfLine(const std::string& address) {
    // A list of everybody's, for a thread's own objects end at no sure moment.
    struct List {
        std::mutex lock;
        std::map<std::pair<DWORD, std::string>, std::weak_ptr<Book>> known;
    };
    static auto* const list = new List;
    const std::lock_guard lock(list->lock);
    std::erase_if(list->known, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<Book>& known = list->known[{::GetCurrentThreadId(), address}];
    std::shared_ptr<Book> book = known.lock();
    if (!book) known = book = std::make_shared<Book>();
    return book;
}

}  // namespace orvik
