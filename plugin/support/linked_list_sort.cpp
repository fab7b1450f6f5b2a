// SPDX-License-Identifier: Apache-2.0
// Order and duplicates in a linked list, and the comparisons of items.
#include "plugin/support/linked_list.h"

#include <cstring>

#include "plugin/support/utilities.h"

// What list_uniq_unsorted was given, for the time that it runs.
static list_compare_fn uniq_compare;
static list_free_fn uniq_free;

// Merges two sorted runs, chained by next links; of equal items the first run's comes first.
static list_handle *merge(list_handle *first, list_handle *second, list_compare_fn compare) {
    list_handle *merged = nullptr;
    list_handle **end = &merged;
    while (first != nullptr && second != nullptr) {
        list_handle **taken = compare(first->data, second->data) > 0 ? &second : &first;
        *end = *taken;
        end = &(*taken)->next;
        *taken = (*taken)->next;
    }
    *end = first != nullptr ? first : second;
    return merged;
}

// Sorts a run of `length` handles, which ends with a null link, and returns its new head.
static list_handle *sort_run(list_handle *run, int32_t length, list_compare_fn compare) {
    if (length < 2) {
        return run;
    }
    const int32_t half = length / 2;
    list_handle *last = run;
    for (int32_t i = 1; i < half; ++i) {
        last = last->next;
    }
    list_handle *second = last->next;
    last->next = nullptr;
    return merge(sort_run(run, half, compare), sort_run(second, length - half, compare), compare);
}

void list_sort(list *container, list_compare_fn compare) {
    container->head = sort_run(container->head, container->length, compare);
    list_handle *previous = nullptr;
    for (list_handle *handle = container->head; handle != nullptr; handle = handle->next) {
        handle->prev = previous;
        previous = handle;
    }
    container->tail = previous;
}

void list_uniq(list *container, list_compare_fn compare, list_free_fn free_item) {
    list_handle *current = container->head;
    while (current != nullptr && current->next != nullptr) {
        list_handle *next = current->next;
        if (compare(current->data, next->data) != 0) {
            current = next;
            continue;
        }
        if (free_item != nullptr) {
            free_item(next->data);
        }
        list_handle_delete(next);
    }
}

static int compare_handles(const void *a, const void *b) {
    return uniq_compare(static_cast<const list_handle *>(a)->data,
                        static_cast<const list_handle *>(b)->data);
}

static void delete_duplicate(void *handle) {
    void *item = list_handle_delete(static_cast<list_handle *>(handle));
    if (uniq_free != nullptr) {
        uniq_free(item);
    }
}

void list_uniq_unsorted(list *container, list_compare_fn compare, list_free_fn free_item) {
    if (container->length < 2) {
        return;
    }
    list *handles = list_alloc();
    for (list_handle *handle = container->head; handle != nullptr; handle = handle->next) {
        list_append(handles, handle);
    }
    uniq_compare = compare;
    uniq_free = free_item;
    list_sort(handles, compare_handles);
    list_uniq(handles, compare_handles, delete_duplicate);
    list_free_container(handles);
}

template <class Word>
static int compare_words(Word a, Word b) {
    return (a > b ? 1 : 0) - (a < b ? 1 : 0);
}

int list_numcmp(const void *a, const void *b) {
    return compare_words(reinterpret_cast<intptr_t>(a), reinterpret_cast<intptr_t>(b));
}

int list_ptrcmp(const void *a, const void *b) {
    return compare_words(reinterpret_cast<uintptr_t>(a), reinterpret_cast<uintptr_t>(b));
}

int list_strcmp(const void *a, const void *b) {
    return strcmp(static_cast<const char *>(a), static_cast<const char *>(b));
}

int list_strcmp_int(const void *a, const void *b) {
    return util_strcmp_int(static_cast<const char *>(a), static_cast<const char *>(b));
}
