// SPDX-License-Identifier: Apache-2.0
// list: a doubly linked list of one-word items that may be deleted while it is walked. Touches
// nothing else of the plug-in.
//
// While any walk is in progress (iterator > 0), a deleted handle is not freed but parked on the
// dead chain, with its links as they were, so that a walker who stands on it can still step on. The
// end of the last walk frees the chain. A list never owns its items. Memory is assumed to be had.
#ifndef WATTFORGE_PLUGIN_SUPPORT_LINKED_LIST_H
#define WATTFORGE_PLUGIN_SUPPORT_LINKED_LIST_H

#include <cstdint>

struct list;

struct list_handle {
    void *data;         // the item; on the dead chain the next dead handle
    list_handle *next;  // null at the tail
    list_handle *prev;  // null at the head
    struct list *list;  // the owner; null marks a dead handle
};

struct list {
    list_handle *head;  // null when empty
    list_handle *tail;  // null when empty
    int32_t length;     // live items
    list_handle *dead;  // handles deleted during a walk
    int32_t iterator;   // walks in progress
};

// Negative, 0 or positive, as the first item stands before, with or after the second.
typedef int (*list_compare_fn)(const void *a, const void *b);
typedef void (*list_free_fn)(void *item);
typedef void *(*list_copy_fn)(void *item);

// How many items list_debug shows before it truncates, less one.
extern int32_t list_debug_threshold;

// Life. list_free hands each item to `free_item` (may be null) and ignores a null list.
list *list_alloc();
void list_free(list *container, list_free_fn free_item);
void list_free_container(list *container);
void list_data_free(void *item);

// A new handle behind `handle`, or at the head when that is null.
list_handle *list_insert_after_typeless(list *container, list_handle *handle, void *item);
list_handle *list_insert_after_int(list *container, list_handle *handle, intptr_t item);

inline list_handle *list_append(list *container, void *item) {
    return list_insert_after_typeless(container, container->tail, item);
}

// The item of a live handle, as an integer.
inline intptr_t list_data_int(const list_handle *handle) {
    return reinterpret_cast<intptr_t>(handle->data);
}
inline void list_replace_int(list_handle *handle, intptr_t item) {
    handle->data = reinterpret_cast<void *>(item);
}

// The item at position n from the head; a negative n counts as 0. An n not below the length stops
// the process.
void *list_get_nth_item(const list *container, int32_t n);

// Removes a live handle and returns its item. The handle is freed, or parked during a walk.
void *list_handle_delete(list_handle *handle);
void *list_delete(list_handle *handle);

// Takes a handle out, which keeps its own links; puts it back where those links say; or frees or
// parks it for good and returns its item.
void list_unlink(list_handle *handle);
void list_relink(list_handle *handle);
void *list_unlink_free(list_handle *handle);

// Moves the handle itself to the tail of `target`; it stays valid.
void list_move_handle(list_handle *handle, list *target);

// Moves all handles of `source`, in their order, in front of those of `target`.
void list_move_all(list *source, list *target);

// Moves the items before `handle`, in order, to a new list and returns that.
list *list_split(list_handle *handle);

// The next or previous live handle, past dead ones; null at the end.
list_handle *list_next_handle_safe(const list_handle *handle);
list_handle *list_prev_handle_safe(const list_handle *handle);

// Begin and end of a walk (see list_walk); the end of the last one frees the dead chain.
inline void list_gen_init(list *container) {
    ++container->iterator;
}
void list_gen_fini(list *container);
void list_free_undead(list *container);

// Copies of the container. Each item passes through `copy_item` when there is one.
list *list_dup(const list *source, list_copy_fn copy_item);
list *list_dup_reverse(const list *source, list_copy_fn copy_item);

// A new list of a's items and then b's.
list *list_concat(const list *a, const list *b);

// Appends the items of `source` to `target`; list_join then frees the source's container.
void list_append_list(list *target, const list *source);
void list_join(list *target, list *source);

void list_reverse(list *container);

// Stable merge sort.
void list_sort(list *container, list_compare_fn compare);

// Removes each item that equals the one before it, or (unsorted) any one before it. The removed
// items go to `free_item` when there is one.
void list_uniq(list *container, list_compare_fn compare, list_free_fn free_item);
void list_uniq_unsorted(list *container, list_compare_fn compare, list_free_fn free_item);

// Comparisons of items: signed integers and pointers (-1, 0 or 1), texts by bytes, texts with runs
// of digits compared as numbers.
int list_numcmp(const void *a, const void *b);
int list_ptrcmp(const void *a, const void *b);
int list_strcmp(const void *a, const void *b);
int list_strcmp_int(const void *a, const void *b);

// Prints the structure to standard output.
void list_debug(const list *container);

// One walk from head to tail, ended by its destructor, also when it is left early:
//
//     for (list_walk walk(names); walk; walk.step()) { use(walk.item()); }
//
// Any handle may be deleted in between, the current one included. A null list is an empty one.
struct list_walk {
    explicit list_walk(list *container)
        : container_(container), handle_(container == nullptr ? nullptr : container->head) {
        if (container_ != nullptr) {
            list_gen_init(container_);
        }
    }
    ~list_walk() {
        if (container_ != nullptr) {
            list_gen_fini(container_);
        }
    }
    list_walk(const list_walk &) = delete;
    list_walk &operator=(const list_walk &) = delete;

    explicit operator bool() const { return handle_ != nullptr; }
    list_handle *handle() const { return handle_; }
    // Only before the current handle is deleted.
    void *item() const { return handle_->data; }
    void step() {
        handle_ = handle_->list != nullptr ? handle_->next : list_next_handle_safe(handle_);
    }

  private:
    list *container_;
    list_handle *handle_;
};

#endif
