// A disk in memory that does to recordings what real ones do: it fills up, fails, forgets what was not forced, and tears.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "record/recording_file.h"

namespace faulty {

using Bytes = std::vector<unsigned char>;

// One file's contents, and which of its writes are not on the disk yet.
struct Contents {
    Bytes bytes;
    struct Change {
        unsigned __int64 at;
        Bytes bytes;  // empty: a cut at `at`
    };
    Bytes forced;                 // as it was when it was last forced
    std::vector<Change> changes;  // since then
    unsigned __int64 room = ~0ull;
    int failures = 0;          // so many of the next writes fail half-way
    std::function<void()> onCall;  // before every call; may throw, as a kill does

    void Write(unsigned __int64 at, const void* data, size_t size) {
        if (size == 0) return;  // no bytes mean a cut
        const auto begin = static_cast<const unsigned char*>(data);
        if (bytes.size() < at + size) bytes.resize(at + size);
        std::copy(begin, begin + size, bytes.begin() + static_cast<std::ptrdiff_t>(at));
        changes.push_back({at, Bytes(begin, begin + size)});
    }
    void Cut(unsigned __int64 size) {
        bytes.resize(size);
        changes.push_back({size, {}});
    }
    // By its changes: the whole file each time is what most of a simulation's time would go into.
    void Force() {
        for (const Change& change : changes) {
            if (change.bytes.empty()) {
                forced.resize(change.at);
            } else {
                Place(forced, change, change.bytes.size());
            }
        }
        changes.clear();
    }

    // The power goes: of what was not forced some is there, in part, in any order.
    void LosePower(std::mt19937& random) {
        const unsigned __int64 length = bytes.size();
        bytes = forced;
        for (const Change& change : changes) {
            const unsigned fate = random() % 4;
            if (fate == 0) continue;
            if (change.bytes.empty()) {
                if (fate > 1) bytes.resize(std::min<size_t>(bytes.size(), change.at));
                continue;
            }
            const size_t kept = fate == 1 ? random() % (change.bytes.size() + 1) : change.bytes.size();
            Place(bytes, change, kept);
        }
        // A length may be on the disk before what it counts.
        if (random() % 4 == 0 && bytes.size() < length) bytes.resize(length);
        forced = bytes;
        changes.clear();
    }

private:
    static void Place(Bytes& all, const Change& change, size_t kept) {
        if (all.size() < change.at + kept) all.resize(change.at + kept);
        std::copy_n(change.bytes.begin(), kept, all.begin() + static_cast<std::ptrdiff_t>(change.at));
    }
};

class File : public IRecordingFile {
public:
    explicit File(std::shared_ptr<Contents> contents) : m_contents(std::move(contents)) {}

    DWORD Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) override {
        Call();
        const Bytes& all = m_contents->bytes;
        got = at >= all.size() ? 0 : static_cast<DWORD>(std::min<unsigned __int64>(size, all.size() - at));
        std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(std::min<unsigned __int64>(at, all.size())), got,
                    static_cast<unsigned char*>(bytes));
        return ERROR_SUCCESS;
    }
    DWORD Write(unsigned __int64 at, const void* bytes, DWORD size) override {
        Call();
        const unsigned __int64 left = m_contents->room > at ? m_contents->room - at : 0;
        if (left < size) {
            if (left > 0) m_contents->Write(at, bytes, static_cast<size_t>(left));
            return ERROR_DISK_FULL;
        }
        if (m_contents->failures > 0) {
            --m_contents->failures;
            m_contents->Write(at, bytes, size / 2);
            return ERROR_ACCESS_DENIED;
        }
        m_contents->Write(at, bytes, size);
        return ERROR_SUCCESS;
    }
    DWORD Cut(unsigned __int64 size) override {
        Call();
        m_contents->Cut(size);
        return ERROR_SUCCESS;
    }
    DWORD Force() override {
        Call();
        m_contents->Force();
        return ERROR_SUCCESS;
    }
    DWORD Size(unsigned __int64& size) override {
        Call();
        size = m_contents->bytes.size();
        return ERROR_SUCCESS;
    }

private:
    void Call() {
        if (m_contents->onCall) m_contents->onCall();
    }
    const std::shared_ptr<Contents> m_contents;
};

}  // namespace faulty
