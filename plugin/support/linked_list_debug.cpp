// SPDX-License-Identifier: Apache-2.0
// The linked list shown on standard output.
#include "plugin/support/linked_list.h"

#include <cstdio>

int32_t list_debug_threshold = 25;

static const void *shown(const void *pointer) {
    return pointer;
}

// The handles from `handle` on: those that follow it, or the rest of the dead chain.
static void print_handles(const list_handle *handle, bool dead) {
    for (int32_t count = 0; handle != nullptr; ++count) {
        printf("    %p: prev=%p next=%p list=%p data=%p\n", shown(handle), shown(handle->prev),
               shown(handle->next), shown(handle->list), shown(handle->data));
        if (count == list_debug_threshold) {
            puts("    ... list truncated");
            return;
        }
        handle = dead ? static_cast<const list_handle *>(handle->data) : handle->next;
    }
}

void list_debug(const list *container) {
    printf("list->head = %p\n", shown(container->head));
    printf("list->tail = %p\n", shown(container->tail));
    printf("list->length = %d\n", container->length);
    printf("list->iterator = %d\n", container->iterator);
    print_handles(container->head, false);
    printf("list->dead = %p\n", shown(container->dead));
    print_handles(container->dead, true);
}
