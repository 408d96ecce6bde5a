// The fields of the download that a user began last, kept from one run to the next; for all windows, the last one that began a
// download having its way. House text. Any thread.
#pragma once

#include <string>

struct LastDownload {
    std::string logger;  // a description; empty: the embedded one
    std::string port;    // empty: nothing is known
    unsigned count = 0;
    unsigned interval = 0;  // ms

    // What is kept; nothing is known of what is damaged.
    static LastDownload Kept();
    void Keep() const;
};
