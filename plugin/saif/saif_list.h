// SPDX-License-Identifier: Apache-2.0
// A singly linked list of (key, data) entries in the order of their entering, for the SAIF records
// and the writer's tree. Touches counted strings only; its complaints go to standard output.
//
// A key belongs to the list once its entry was taken, and stays the caller's when it was not. Data
// is released through the list's delete function alone.
#ifndef WATTFORGE_PLUGIN_SAIF_SAIF_LIST_H
#define WATTFORGE_PLUGIN_SAIF_SAIF_LIST_H

#include <cstdint>

#include "plugin/support/counted_string.h"

// What is handed in to be found or entered.
struct saif_list_entry {
    dstring *key;
    void *data;
};

struct saif_list_item {
    dstring *key;
    void *data;
    saif_list_item *next;
};

// Non-zero when the item matches the probe. The order slot is null in a list that is not ordered.
typedef int (*saif_compare_fn)(const saif_list_item *item, const saif_list_entry *probe,
                               int *order_slot);
typedef int (*saif_print_fn)(const char *key, void *data);
typedef int (*saif_delete_fn)(void *data);

struct saif_list {
    uint32_t count;
    int32_t ordered;  // 0: in order of entering, the only mode there is
    saif_list_item *tail;
    saif_list_item *head;
    saif_compare_fn compare;
    saif_print_fn print;
    saif_delete_fn delete_data;
};

// Comparisons. The default compares an item's key with itself, so it matches every item; the dummy
// matches none; cmp_func matches equal keys.
int default_cmp(const saif_list_item *item, const saif_list_entry *probe, int *order_slot);
int dummy_cmp(const saif_list_item *item, const saif_list_entry *probe, int *order_slot);
int cmp_func(const saif_list_item *item, const saif_list_entry *probe, int *order_slot);

// Print and delete functions that do nothing and return 1.
int default_print(const char *key, void *data);
int default_delete(void *data);
int prn_func(const char *key, void *data);

// A new list, or null when there is no memory. A null function stands for the default one.
saif_list *saif_list_init(saif_compare_fn compare, saif_print_fn print, saif_delete_fn delete_data);

int saif_list_is_empty(const saif_list *list);

// The first item that matches the probe, or null; saif_list_findi with want_previous and
// order_slot zero.
saif_list_item *saif_list_find(const saif_list *list, const saif_list_entry *probe);

// The first item that matches, or with want_previous the one before it: the head itself when the
// head matches, the last item when none does. Null for a null or empty list.
saif_list_item *saif_list_findi(const saif_list *list, const saif_list_entry *probe,
                                int want_previous, int *order_slot);

// saif_list_enteri without out_item, unique.
int saif_list_enter(saif_list *list, const saif_list_entry *entry);

// Appends the entry; 1, or 0 when nothing was entered: the list is null, `unique` is set and an
// item matches, or there is no memory. out_item, when given, receives the new item.
int saif_list_enteri(saif_list *list, const saif_list_entry *entry, saif_list_item **out_item,
                     int unique);

// Releases the items that follow after_item, with keys and data; all of them when it is null.
void saif_list_env_free(saif_list *list, saif_list_item *after_item);

// Releases the list with its items.
void saif_list_free(saif_list *list);

// Calls the print function for each item that has data, in order.
void saif_list_print(const saif_list *list);

#endif
