// SPDX-License-Identifier: Apache-2.0
// The SAIF writer's hierarchy: instances with their ports and nets, in the order of their entering,
// each with a data pointer that is the caller's. Knows names and levels, nothing of activity.
// Touches the keyed list, counted strings and the hash table.
//
// Life of a tree: create, register print functions, insert, generate once (writer.h; it rewrites
// the names), free. The delete functions are the writer's, not the tree's: one tree at a time.
//
// Names are split at the divider. One leading divider is skipped, a trailing one is dropped, and a
// divider that stands where a component should begin belongs to that component: a//b is a, then /b.
//
// Insertion costs the same however many children a level has and, as long as names come region by
// region, however deep they are: a level gets an index of its children when it has more than a few,
// and the tree remembers the nodes along the path of the last name.
#ifndef WATTFORGE_PLUGIN_SAIF_TREE_H
#define WATTFORGE_PLUGIN_SAIF_TREE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "plugin/saif/saif_list.h"

struct st_table;

// One instance.
struct SaifTreeNode {
    saif_list *children;  // key: instance name, data: its SaifTreeNode
    saif_list *nets;      // key: net name, data: the caller's object
    saif_list *ports;     // key: port name, data: the caller's object
    void *leak_info;      // null, or what the leak print function gets
    void *node_info;      // null, or what the node print function gets
    // The rest is the tree's own.
    SaifTreeNode *parent;          // null at the root
    saif_list_item *walk;          // the next child of a walk in progress
    st_table *child_index;         // children by name, once there are many; keys are the items'
    saif_list_item *last_indexed;  // children up to this one are in the index
};

// Print one net or port, open one instance (and raise the indentation by 3), print a leakage entry.
typedef void (*saif_net_print_fn)(FILE *stream, const dstring *name, void *data, double scale,
                                  int indentation);
typedef void (*saif_node_print_fn)(FILE *stream, const dstring *name, void *node_info,
                                   int *indentation);
typedef void (*saif_leak_print_fn)(FILE *stream, void *leak_info, int indentation);

// A level of the path of the last name: the instance, and where in the text the next one begins.
struct SaifPathLevel {
    SaifTreeNode *node;
    size_t end;
};

// The path of the last name, without the name itself.
struct SaifPath {
    char *text;
    size_t length;
    size_t capacity;
    SaifPathLevel *levels;
    size_t depth;
    size_t depth_capacity;
    char divider;
};

struct SaifTree {
    SaifTreeNode *root;
    saif_net_print_fn print_net;
    saif_net_print_fn print_port;
    saif_node_print_fn print_node;
    saif_leak_print_fn print_leak;
    SaifPath path;  // the tree's own
};

// A new tree with an empty root and print functions that print nothing, or null when there is no
// memory. Sets the writer's delete functions for the data of nets and ports and for node and leak
// info; null stands for tree_data_del.
SaifTree *saifout_create_tree(saif_delete_fn net_data_delete, saif_delete_fn port_data_delete,
                              saif_delete_fn node_info_delete, saif_delete_fn leak_info_delete);

// Frees all nodes and lists, then the tree. Data and infos go through the delete functions.
void saifout_free_tree(SaifTree *tree);

// 1 when the root has no instances.
int saifout_tree_is_empty(const SaifTree *tree);

// Store a print function; a null tree is ignored.
void saifout_register_net_print_function(SaifTree *tree, saif_net_print_fn print);
void saifout_register_port_print_function(SaifTree *tree, saif_net_print_fn print);
void saifout_register_node_print_function(SaifTree *tree, saif_node_print_fn print);
void saifout_register_leak_print_function(SaifTree *tree, saif_leak_print_fn print);

// Enters a port (is_port non-zero) or net under the path that the full name spells with '/', making
// the instances that are missing. The same name may be entered again. 1, or 0 without memory.
int saifout_insert_port_net_full_hier(const char *name, void *data, int is_port, SaifTree *tree);

// The node of a full name, made when missing, together with the nodes on the way. Only a last node
// that is new gets the two infos. Null without memory.
SaifTreeNode *saifout_find_create_node(const char *name, char divider, void *node_info,
                                       void *leak_info, SaifTree *tree);
SaifTreeNode *saifout_create_node(const char *name, char divider, void *node_info, void *leak_info,
                                  SaifTree *tree);

// The node of a full name; null when any component is missing.
SaifTreeNode *saifout_find_node(const char *name, char divider, SaifTree *tree);

// Enters a copy of the name with the data as a port (is_port 1) or net (is_port 0) of the node. 1,
// or 0 for any other is_port, a null node or no memory.
int saifout_insert_port_net_at_this_level(SaifTreeNode *node, dstring *name, void *data,
                                          int is_port);

// Set a field of the node: 1, or 0 for a null node.
int saifout_insert_node_info_at_this_level(SaifTreeNode *node, void *info);
int saifout_insert_leak_info_at_this_level(SaifTreeNode *node, void *info);

// The first component of a name as a new string; 1 when more follow it after a divider, 0 when it
// is the last. `rest`, when more follow, is where they begin in the text.
int get_hier_level(const char *text, char divider, dstring **component, const char **rest);

// A node with empty lists; null, with a complaint on standard output, when there is no memory.
SaifTreeNode *tree_node_init();

// Frees everything below a node and what hangs from it, not the node's own record.
void free_tree(SaifTreeNode *node);

// Drops the index of a node's children, whose names are about to change.
void saif_forget_child_index(SaifTreeNode *node);

// List functions: a comparison that matches equal keys, a print function that does nothing, a
// delete function that does nothing, one that frees a node's record. All but the first return 1.
int tree_cmp(const saif_list_item *item, const saif_list_entry *probe, int *order_slot);
int tree_print(const char *key, void *data);
int tree_data_del(void *data);
int tree_node_del(void *node);

// Print functions that print nothing.
void default_net_gen(FILE *stream, const dstring *name, void *data, double scale, int indentation);
void default_node_gen(FILE *stream, const dstring *name, void *node_info, int *indentation);
void default_leak_gen(FILE *stream, void *leak_info, int indentation);

#endif
