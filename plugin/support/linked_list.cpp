// SPDX-License-Identifier: Apache-2.0
// The linked list: handles in and out, walks, whole lists.
#include "plugin/support/linked_list.h"

#include <cstdlib>

#include "plugin/support/linked_list_handles.h"
#include "plugin/support/utilities.h"

list *list_alloc() {
    return static_cast<list *>(calloc(1, sizeof(list)));
}

void list_free(list *container, list_free_fn free_item) {
    if (container == nullptr) {
        return;
    }
    list_free_undead(container);
    list_handle *handle = container->head;
    while (handle != nullptr) {
        list_handle *next = handle->next;
        if (free_item != nullptr) {
            free_item(handle->data);
        }
        list_free_handle(handle);
        handle = next;
    }
    free(container);
}

void list_free_container(list *container) {
    list_free(container, nullptr);
}

void list_data_free(void *item) {
    free(item);
}

// Makes the neighbours, or the ends of the list, point at the handle.
static void mend_links_to(list_handle *handle) {
    list *container = handle->list;
    (handle->prev != nullptr ? handle->prev->next : container->head) = handle;
    (handle->next != nullptr ? handle->next->prev : container->tail) = handle;
    ++container->length;
}

list_handle *list_insert_after_typeless(list *container, list_handle *handle, void *item) {
    list_handle *inserted = list_new_handle();
    inserted->data = item;
    inserted->next = handle != nullptr ? handle->next : container->head;
    inserted->prev = handle;
    inserted->list = container;
    mend_links_to(inserted);
    return inserted;
}

list_handle *list_insert_after_int(list *container, list_handle *handle, intptr_t item) {
    return list_insert_after_typeless(container, handle, reinterpret_cast<void *>(item));
}

void *list_get_nth_item(const list *container, int32_t n) {
    util_assert(n < container->length && container->head != nullptr,
                "position not below the length of the list");
    const list_handle *handle = container->head;
    for (int32_t i = 0; i < n; ++i) {
        handle = handle->next;
    }
    return handle->data;
}

void list_unlink(list_handle *handle) {
    list *container = handle->list;
    (handle->prev != nullptr ? handle->prev->next : container->head) = handle->next;
    (handle->next != nullptr ? handle->next->prev : container->tail) = handle->prev;
    --container->length;
}

void list_relink(list_handle *handle) {
    mend_links_to(handle);
}

void *list_unlink_free(list_handle *handle) {
    list *container = handle->list;
    void *item = handle->data;
    if (container->iterator >= 1) {
        handle->data = container->dead;
        container->dead = handle;
        handle->list = nullptr;
    } else {
        list_free_handle(handle);
    }
    return item;
}

void *list_handle_delete(list_handle *handle) {
    list_unlink(handle);
    return list_unlink_free(handle);
}

void *list_delete(list_handle *handle) {
    return list_handle_delete(handle);
}

void list_move_handle(list_handle *handle, list *target) {
    list_unlink(handle);
    handle->list = target;
    handle->next = nullptr;
    handle->prev = target->tail;
    mend_links_to(handle);
}

void list_move_all(list *source, list *target) {
    if (source->head == nullptr) {
        return;
    }
    for (list_handle *handle = source->head; handle != nullptr; handle = handle->next) {
        handle->list = target;
    }
    source->tail->next = target->head;
    (target->head != nullptr ? target->head->prev : target->tail) = source->tail;
    target->head = source->head;
    target->length += source->length;
    source->head = nullptr;
    source->tail = nullptr;
    source->length = 0;
}

list *list_split(list_handle *handle) {
    list *container = handle->list;
    list *before = list_alloc();
    list_gen_init(container);
    list_handle *moved = container->head;
    while (moved != handle) {
        list_handle *next = moved->next;
        list_append(before, list_handle_delete(moved));
        moved = next;
    }
    list_gen_fini(container);
    return before;
}

list_handle *list_next_handle_safe(const list_handle *handle) {
    list_handle *next = handle->next;
    while (next != nullptr && next->list == nullptr) {
        next = next->next;
    }
    return next;
}

list_handle *list_prev_handle_safe(const list_handle *handle) {
    list_handle *previous = handle->prev;
    while (previous != nullptr && previous->list == nullptr) {
        previous = previous->prev;
    }
    return previous;
}

void list_gen_fini(list *container) {
    --container->iterator;
    if (container->iterator == 0 && container->dead != nullptr) {
        list_free_undead(container);
    }
}

void list_free_undead(list *container) {
    while (container->dead != nullptr) {
        list_handle *dead = container->dead;
        container->dead = static_cast<list_handle *>(dead->data);
        list_free_handle(dead);
    }
}

// As many items as the source has now: a list can be appended to itself.
static void append_items(list *target, const list *source, list_copy_fn copy_item) {
    const list_handle *handle = source->head;
    for (int32_t left = source->length; left > 0; --left, handle = handle->next) {
        list_append(target, copy_item == nullptr ? handle->data : copy_item(handle->data));
    }
}

list *list_dup(const list *source, list_copy_fn copy_item) {
    list *copy = list_alloc();
    append_items(copy, source, copy_item);
    return copy;
}

list *list_dup_reverse(const list *source, list_copy_fn copy_item) {
    list *copy = list_dup(source, copy_item);
    list_reverse(copy);
    return copy;
}

list *list_concat(const list *a, const list *b) {
    list *both = list_dup(a, nullptr);
    list_append_list(both, b);
    return both;
}

void list_append_list(list *target, const list *source) {
    append_items(target, source, nullptr);
}

void list_join(list *target, list *source) {
    list_append_list(target, source);
    list_free_container(source);
}

void list_reverse(list *container) {
    list_handle *handle = container->head;
    container->head = container->tail;
    container->tail = handle;
    while (handle != nullptr) {
        list_handle *next = handle->next;
        handle->next = handle->prev;
        handle->prev = next;
        handle = next;
    }
}
