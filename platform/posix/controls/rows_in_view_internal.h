// The rows of a list that scrolls: the place that they have beside the bar, how many of them are seen, and the bar itself.
#pragma once

#include "platform/posix/controls/scroll_part_internal.h"

namespace orvik::detail {

struct RowsInView {
    // `inside`: the client area without its frame; `top`: the first row in view, of `count`.
    RowsInView(RECT inside, int count, int top, int height, LONG barWidth) : inner(inside) {
        if (count > (inner.bottom - inner.top) / height) inner.right -= barWidth;
        page = std::max(1, static_cast<int>(inner.bottom - inner.top) / height);
        bar.place = {inner.right, inner.top, inner.right + barWidth, inner.bottom};
        bar.most = count - 1;
        bar.page = page;
        bar.position = top;
    }
    RECT inner;
    int page;
    ScrollPart bar;
};

}  // namespace orvik::detail
