#include "platform/print.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <new>

#include "platform/print_internal.h"

namespace orvik::detail {
namespace {
struct Jobs {
    std::mutex lock;
    std::map<HDC, std::unique_ptr<PrintJob>> open;
};

Jobs& TheJobs() {
    static auto* jobs = new Jobs;  // outlives every thread that may still draw
    return *jobs;
}
}  // namespace

bool IsPrintJob(HDC dc) {
    Jobs& jobs = TheJobs();
    const std::lock_guard guard(jobs.lock);
    return jobs.open.count(dc) != 0;
}

SheetRoom RoomOn(const Sheet& sheet) {
    constexpr double kMargin = 10 / 25.4 * 72, kUnitsAPoint = 96.0 / 72;
    // A label has not the margins of a letter.
    const double most = std::min(sheet.width, sheet.height) / 10, least = std::min(kMargin, most);
    const double left = std::max(sheet.left, least), top = std::max(sheet.top, least);
    const auto units = [](double points) {
        return std::max(static_cast<LONG>(std::floor(points * kUnitsAPoint + 1e-6)), LONG{1});
    };
    return {
        left,
        top,
        {units(sheet.width - left - std::max(sheet.right, least)), units(sheet.height - top - std::max(sheet.bottom, least))}};
}
}  // namespace orvik::detail

using namespace orvik::detail;

HDC OrvikBeginPrint(HWND owner, LPCSTR document, SIZE* page) {
    DWORD error = ERROR_INVALID_PARAMETER;
    std::unique_ptr<PrintJob> job;
    try {
        if (document != nullptr && page != nullptr) job = AskForPrint(owner, document, *page, error);
        if (job != nullptr) {
            const HDC dc = job->Dc();
            Jobs& jobs = TheJobs();
            const std::lock_guard guard(jobs.lock);
            jobs.open[dc] = std::move(job);
            return dc;
        }
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    SetLastError(error == kGivenUp ? ERROR_SUCCESS : error);
    return nullptr;
}

BOOL OrvikEndPrint(HDC dc, BOOL send) {
    std::unique_ptr<PrintJob> job;
    {
        Jobs& jobs = TheJobs();
        const std::lock_guard guard(jobs.lock);
        if (const auto found = jobs.open.find(dc); found != jobs.open.end()) {
            job = std::move(found->second);
            jobs.open.erase(found);
        }
    }
    DWORD error = ERROR_INVALID_HANDLE;
    try {
        if (job != nullptr) error = send ? job->Send() : ERROR_SUCCESS;
        job.reset();
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    if (error == ERROR_SUCCESS) return TRUE;
    SetLastError(error == kGivenUp ? ERROR_SUCCESS : error);
    return FALSE;
}
