// SPDX-License-Identifier: Apache-2.0
// The keyed list of SAIF records: entering, finding, releasing.
#include "plugin/saif/saif_list.h"

#include <cstdio>
#include <cstdlib>

int default_cmp(const saif_list_item *item, const saif_list_entry *, int *) {
    return string_compare(item->key, item->key) == 0;
}

int dummy_cmp(const saif_list_item *, const saif_list_entry *, int *) {
    return 0;
}

int cmp_func(const saif_list_item *item, const saif_list_entry *probe, int *) {
    return string_compare(item->key, probe->key) == 0;
}

int default_print(const char *, void *) {
    return 1;
}

int default_delete(void *) {
    return 1;
}

int prn_func(const char *, void *) {
    return 1;
}

saif_list *saif_list_init(saif_compare_fn compare, saif_print_fn print,
                          saif_delete_fn delete_data) {
    auto *list = static_cast<saif_list *>(calloc(1, sizeof(saif_list)));
    if (list == nullptr) {
        return nullptr;
    }
    list->compare = compare != nullptr ? compare : default_cmp;
    list->print = print != nullptr ? print : default_print;
    list->delete_data = delete_data != nullptr ? delete_data : default_delete;
    return list;
}

int saif_list_is_empty(const saif_list *list) {
    return list->count == 0;
}

saif_list_item *saif_list_find(const saif_list *list, const saif_list_entry *probe) {
    return saif_list_findi(list, probe, 0, nullptr);
}

saif_list_item *saif_list_findi(const saif_list *list, const saif_list_entry *probe,
                                int want_previous, int *order_slot) {
    if (list == nullptr || list->count == 0) {
        return nullptr;
    }
    int *slot = list->ordered != 0 ? order_slot : nullptr;
    saif_list_item *previous = list->head;
    for (saif_list_item *item = list->head; item != nullptr; item = item->next) {
        if (list->compare(item, probe, slot) != 0) {
            return want_previous != 0 ? previous : item;
        }
        previous = item;
    }
    return want_previous != 0 ? list->tail : nullptr;
}

int saif_list_enter(saif_list *list, const saif_list_entry *entry) {
    return saif_list_enteri(list, entry, nullptr, 1);
}

int saif_list_enteri(saif_list *list, const saif_list_entry *entry, saif_list_item **out_item,
                     int unique) {
    if (list == nullptr) {
        return 0;
    }
    if (unique != 0 && saif_list_find(list, entry) != nullptr) {
        return 0;
    }
    auto *item = static_cast<saif_list_item *>(malloc(sizeof(saif_list_item)));
    if (item == nullptr) {
        puts("Out of memory. Cannot create list.");
        return 0;
    }
    item->key = entry->key;
    item->data = entry->data;
    item->next = nullptr;
    if (list->tail != nullptr) {
        list->tail->next = item;
    } else {
        list->head = item;
    }
    list->tail = item;
    list->count++;
    if (out_item != nullptr) {
        *out_item = item;
    }
    return 1;
}

void saif_list_env_free(saif_list *list, saif_list_item *after_item) {
    if (list == nullptr) {
        puts("You are trying to work on an empty list.");
        return;
    }
    saif_list_item *item = after_item != nullptr ? after_item->next : list->head;
    while (item != nullptr) {
        saif_list_item *next = item->next;
        if (item->data != nullptr) {
            list->delete_data(item->data);
        }
        if (item->key != nullptr) {
            string_free(item->key);
        }
        free(item);
        list->count--;
        item = next;
    }
    if (after_item != nullptr) {
        after_item->next = nullptr;
        list->tail = after_item;
    }
    if (list->count == 0) {
        list->head = list->tail = nullptr;
    }
}

void saif_list_free(saif_list *list) {
    saif_list_env_free(list, nullptr);
    free(list);
}

void saif_list_print(const saif_list *list) {
    if (list == nullptr) {
        puts("You are trying to work on an empty list.");
        return;
    }
    for (const saif_list_item *item = list->head; item != nullptr; item = item->next) {
        if (item->data != nullptr) {
            list->print(string_to_char(item->key), item->data);
        }
    }
}
