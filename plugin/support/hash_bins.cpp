// SPDX-License-Identifier: Apache-2.0
// The paged array of chain heads.
#include "plugin/support/hash_bins.h"

#include <cstdlib>
#include <cstring>

static uint32_t page_count(uint32_t length) {
    return (length + ST_BINS_PER_PAGE - 1) / ST_BINS_PER_PAGE;
}

// Bins that a page has in an array of `length`: all, unless there is but one page.
static uint32_t page_length(uint32_t length) {
    return length < ST_BINS_PER_PAGE ? length : ST_BINS_PER_PAGE;
}

static void set_page(st_bins *bins, uint32_t page, uint32_t old_bins, uint32_t new_bins) {
    void **memory = bins->pages[page];
    memory = static_cast<void **>(realloc(memory, new_bins * sizeof(void *)));
    if (new_bins > old_bins) {
        memset(memory + old_bins, 0, (new_bins - old_bins) * sizeof(void *));
    }
    bins->pages[page] = memory;
}

void st_bins_init(st_bins *bins, uint32_t length) {
    bins->pages = nullptr;
    bins->length = 0;
    st_bins_set_length(bins, length);
}

void st_bins_set_length(st_bins *bins, uint32_t length) {
    const uint32_t old_pages = page_count(bins->length);
    const uint32_t new_pages = page_count(length);
    for (uint32_t page = new_pages; page < old_pages; ++page) {
        free(bins->pages[page]);
    }
    bins->pages = static_cast<void ***>(realloc(bins->pages, new_pages * sizeof(void **)));
    if (old_pages > 0) {
        set_page(bins, 0, page_length(bins->length), page_length(length));
    }
    for (uint32_t page = old_pages; page < new_pages; ++page) {
        bins->pages[page] = nullptr;
        set_page(bins, page, 0, page_length(length));
    }
    bins->length = length;
}

void st_bins_free(st_bins *bins) {
    for (uint32_t page = 0; page < page_count(bins->length); ++page) {
        free(bins->pages[page]);
    }
    free(bins->pages);
}

size_t st_bins_bytes(const st_bins *bins) {
    return page_count(bins->length) * sizeof(void **) + bins->length * sizeof(void *);
}
