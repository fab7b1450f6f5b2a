// SPDX-License-Identifier: Apache-2.0
// The SAIF writer's hierarchy: splitting names, finding and making instances, entering, freeing.
#include "plugin/saif/tree.h"

#include "plugin/support/hash_table.h"

#include <cstdlib>
#include <cstring>

// Up to here a look along the list is cheaper than an index.
static constexpr uint32_t MANY_CHILDREN = 8;

static saif_delete_fn delete_net = tree_data_del;
static saif_delete_fn delete_port = tree_data_del;
static saif_delete_fn delete_node = tree_data_del;
static saif_delete_fn delete_leak = tree_data_del;

int tree_cmp(const saif_list_item *item, const saif_list_entry *probe, int *) {
    return string_compare(item->key, probe->key) == 0;
}

int tree_print(const char *, void *) {
    return 1;
}

int tree_data_del(void *) {
    return 1;
}

int tree_node_del(void *node) {
    free(node);
    return 1;
}

void default_net_gen(FILE *, const dstring *, void *, double, int) {
}

void default_node_gen(FILE *, const dstring *, void *, int *) {
}

void default_leak_gen(FILE *, void *, int) {
}

static void free_list(saif_list **list) {
    if (*list != nullptr) {
        saif_list_free(*list);
    }
    *list = nullptr;
}

SaifTreeNode *tree_node_init() {
    auto *node = static_cast<SaifTreeNode *>(calloc(1, sizeof(SaifTreeNode)));
    if (node != nullptr) {
        node->children = saif_list_init(tree_cmp, tree_print, tree_node_del);
        node->ports = saif_list_init(tree_cmp, tree_print, delete_port);
        node->nets = saif_list_init(tree_cmp, tree_print, delete_net);
        if (node->children != nullptr && node->ports != nullptr && node->nets != nullptr) {
            return node;
        }
        free_list(&node->children);
        free_list(&node->ports);
        free_list(&node->nets);
        free(node);
    }
    puts("Out of memory. Cannot create tree node.");
    return nullptr;
}

static saif_delete_fn or_none(saif_delete_fn given) {
    return given != nullptr ? given : tree_data_del;
}

SaifTree *saifout_create_tree(saif_delete_fn net_data_delete, saif_delete_fn port_data_delete,
                              saif_delete_fn node_info_delete, saif_delete_fn leak_info_delete) {
    delete_net = or_none(net_data_delete);
    delete_port = or_none(port_data_delete);
    delete_node = or_none(node_info_delete);
    delete_leak = or_none(leak_info_delete);
    auto *tree = static_cast<SaifTree *>(calloc(1, sizeof(SaifTree)));
    if (tree == nullptr) {
        puts("Out of memory. Cannot create tree node.");
        return nullptr;
    }
    tree->root = tree_node_init();
    if (tree->root == nullptr) {
        free(tree);
        return nullptr;
    }
    tree->print_net = default_net_gen;
    tree->print_port = default_net_gen;
    tree->print_node = default_node_gen;
    tree->print_leak = default_leak_gen;
    return tree;
}

void saifout_register_net_print_function(SaifTree *tree, saif_net_print_fn print) {
    if (tree != nullptr) {
        tree->print_net = print;
    }
}

void saifout_register_port_print_function(SaifTree *tree, saif_net_print_fn print) {
    if (tree != nullptr) {
        tree->print_port = print;
    }
}

void saifout_register_node_print_function(SaifTree *tree, saif_node_print_fn print) {
    if (tree != nullptr) {
        tree->print_node = print;
    }
}

void saifout_register_leak_print_function(SaifTree *tree, saif_leak_print_fn print) {
    if (tree != nullptr) {
        tree->print_leak = print;
    }
}

int saifout_tree_is_empty(const SaifTree *tree) {
    return tree->root->children == nullptr || saif_list_is_empty(tree->root->children);
}

// A string of the first `length` characters.
static dstring *string_of(const char *text, size_t length) {
    if (text[length] == '\0') {
        return string_alloc(text);
    }
    char small[256];
    char *copy = length < sizeof small ? small : static_cast<char *>(malloc(length + 1));
    if (copy == nullptr) {
        return nullptr;
    }
    memcpy(copy, text, length);
    copy[length] = '\0';
    dstring *string = string_alloc(copy);
    if (copy != small) {
        free(copy);
    }
    return string;
}

int get_hier_level(const char *text, char divider, dstring **component, const char **rest) {
    const char *end = *text != '\0' ? strchr(text + 1, divider) : nullptr;
    if (end != nullptr && end[1] != '\0') {
        *component = string_of(text, static_cast<size_t>(end - text));
        *rest = end + 1;
        return 1;
    }
    size_t length = strlen(text);
    if (length > 0 && text[length - 1] == divider) {
        length--;
    }
    *component = string_of(text, length);
    return 0;
}

// The index is filled up to the end of the list at each use, so that whoever enters a child need
// not know of it. Names that are there already keep their first node, as a search would find it.
static void update_child_index(SaifTreeNode *node) {
    if (node->last_indexed == node->children->tail) {
        return;
    }
    if (node->child_index == nullptr) {
        node->child_index = st_alloc_abo(st_strcmp, st_strhash);
    }
    saif_list_item *item =
        node->last_indexed != nullptr ? node->last_indexed->next : node->children->head;
    for (; item != nullptr; item = item->next) {
        void **slot = nullptr;
        if (!st_find_or_add_kptr_vptr(node->child_index, string_to_char(item->key), &slot)) {
            *slot = item->data;
        }
        node->last_indexed = item;
    }
}

static SaifTreeNode *find_child(SaifTreeNode *node, dstring *name) {
    if (node->children->count <= MANY_CHILDREN) {
        const saif_list_entry probe = {name, nullptr};
        const saif_list_item *item = saif_list_find(node->children, &probe);
        return item != nullptr ? static_cast<SaifTreeNode *>(item->data) : nullptr;
    }
    update_child_index(node);
    void *child = nullptr;
    if (!st_lookup_kptr_vptr(node->child_index, string_to_char(name), &child)) {
        return nullptr;
    }
    return static_cast<SaifTreeNode *>(child);
}

// A new last child; takes the name over.
static SaifTreeNode *add_child(SaifTreeNode *node, dstring *name, void *node_info,
                               void *leak_info) {
    SaifTreeNode *child = tree_node_init();
    const saif_list_entry entry = {name, child};
    if (child == nullptr || !saif_list_enteri(node->children, &entry, nullptr, 0)) {
        if (child != nullptr) {
            free_tree(child);
            free(child);
        }
        string_free(name);
        return nullptr;
    }
    child->parent = node;
    child->node_info = node_info;
    child->leak_info = leak_info;
    return child;
}

void saif_forget_child_index(SaifTreeNode *node) {
    if (node->child_index != nullptr) {
        st_free(node->child_index);
    }
    node->child_index = nullptr;
    node->last_indexed = nullptr;
}

static size_t common_prefix(const SaifPath *path, const char *text) {
    if (path->length == 0 || strncmp(path->text, text, path->length) == 0) {
        return path->length;
    }
    size_t same = 0;
    while (path->text[same] == text[same]) {
        same++;
    }
    return same;
}

// Shortens the remembered path to what this text begins with, and returns how much of the text that
// is. A level is kept only when more text follows it: else its name is the text's last component.
static size_t recall_path(SaifPath *path, const char *text, char divider) {
    const size_t same = path->divider == divider ? common_prefix(path, text) : 0;
    path->divider = divider;
    while (path->depth > 0) {
        const size_t end = path->levels[path->depth - 1].end;
        if (end <= same && text[end] != '\0') {
            break;
        }
        path->depth--;
    }
    path->length = path->depth > 0 ? path->levels[path->depth - 1].end : 0;
    return path->length;
}

// Makes room for `needed` elements in a growing array; 0 when there is no memory.
static int reserve(void **array, size_t *capacity, size_t needed, size_t element_size) {
    if (needed <= *capacity) {
        return 1;
    }
    const size_t wanted = needed * 2;
    void *grown = realloc(*array, wanted * element_size);
    if (grown == nullptr) {
        return 0;
    }
    *array = grown;
    *capacity = wanted;
    return 1;
}

static int remember_level(SaifPath *path, const char *from, const char *to, SaifTreeNode *node) {
    const auto length = static_cast<size_t>(to - from);
    if (!reserve(reinterpret_cast<void **>(&path->text), &path->capacity, path->length + length,
                 1) ||
        !reserve(reinterpret_cast<void **>(&path->levels), &path->depth_capacity, path->depth + 1,
                 sizeof(SaifPathLevel))) {
        return 0;
    }
    memcpy(path->text + path->length, from, length);
    path->length += length;
    path->levels[path->depth++] = {node, path->length};
    return 1;
}

// Goes down to the instance around the last component of the name, which is handed out as a new
// string. Instances that are missing are made, or, without `create`, end the walk with null.
static SaifTreeNode *walk_to_last(SaifTree *tree, const char *name, char divider, int create,
                                  dstring **last) {
    SaifPath *path = &tree->path;
    const char *at = name[0] == divider ? name + 1 : name;
    at += recall_path(path, at, divider);
    SaifTreeNode *node = path->depth > 0 ? path->levels[path->depth - 1].node : tree->root;
    const char *rest = nullptr;
    while (get_hier_level(at, divider, last, &rest)) {
        SaifTreeNode *child = find_child(node, *last);
        if (child != nullptr || !create) {
            string_free(*last);
        } else {
            child = add_child(node, *last, nullptr, nullptr);
        }
        if (child == nullptr || !remember_level(path, at, rest, child)) {
            return nullptr;
        }
        node = child;
        at = rest;
    }
    return node;
}

// Enters a port or net; takes the name over.
static int enter_object(SaifTreeNode *node, dstring *name, void *data, int is_port) {
    const saif_list_entry entry = {name, data};
    if (saif_list_enteri(is_port ? node->ports : node->nets, &entry, nullptr, 0)) {
        return 1;
    }
    string_free(name);
    return 0;
}

static int add_from_node(SaifTree *tree, const char *name, void *data, int is_port) {
    dstring *last = nullptr;
    SaifTreeNode *node = walk_to_last(tree, name, '/', 1, &last);
    return node != nullptr && enter_object(node, last, data, is_port);
}

int saifout_insert_port_net_full_hier(const char *name, void *data, int is_port, SaifTree *tree) {
    if (name == nullptr || tree == nullptr) {
        return 0;
    }
    return add_from_node(tree, name, data, is_port);
}

SaifTreeNode *saifout_find_create_node(const char *name, char divider, void *node_info,
                                       void *leak_info, SaifTree *tree) {
    dstring *last = nullptr;
    SaifTreeNode *node = walk_to_last(tree, name, divider, 1, &last);
    if (node == nullptr) {
        return nullptr;
    }
    SaifTreeNode *found = find_child(node, last);
    if (found == nullptr) {
        return add_child(node, last, node_info, leak_info);
    }
    string_free(last);
    return found;
}

SaifTreeNode *saifout_create_node(const char *name, char divider, void *node_info, void *leak_info,
                                  SaifTree *tree) {
    return saifout_find_create_node(name, divider, node_info, leak_info, tree);
}

SaifTreeNode *saifout_find_node(const char *name, char divider, SaifTree *tree) {
    dstring *last = nullptr;
    SaifTreeNode *node = walk_to_last(tree, name, divider, 0, &last);
    if (node == nullptr) {
        return nullptr;
    }
    SaifTreeNode *found = find_child(node, last);
    string_free(last);
    return found;
}

int saifout_insert_port_net_at_this_level(SaifTreeNode *node, dstring *name, void *data,
                                          int is_port) {
    if (node == nullptr || (is_port != 0 && is_port != 1)) {
        return 0;
    }
    return enter_object(node, string_dup(name), data, is_port);
}

int saifout_insert_node_info_at_this_level(SaifTreeNode *node, void *info) {
    if (node == nullptr) {
        return 0;
    }
    node->node_info = info;
    return 1;
}

int saifout_insert_leak_info_at_this_level(SaifTreeNode *node, void *info) {
    if (node == nullptr) {
        return 0;
    }
    node->leak_info = info;
    return 1;
}

static void enter_to_free(SaifTreeNode *node) {
    free_list(&node->ports);
    free_list(&node->nets);
    saif_forget_child_index(node);
    node->walk = node->children != nullptr ? node->children->head : nullptr;
}

static void leave_freed(SaifTreeNode *node) {
    free_list(&node->children);
    if (node->node_info != nullptr) {
        delete_node(node->node_info);
    }
    if (node->leak_info != nullptr) {
        delete_leak(node->leak_info);
    }
}

// Level by level through the nodes' own links: a call for each level would end on the stack's limit
// in a very deep hierarchy.
void free_tree(SaifTreeNode *node) {
    SaifTreeNode *at = node;
    enter_to_free(at);
    while (at != nullptr) {
        if (at->walk != nullptr) {
            auto *child = static_cast<SaifTreeNode *>(at->walk->data);
            at->walk = at->walk->next;
            at = child;
            enter_to_free(at);
        } else {
            SaifTreeNode *parent = at == node ? nullptr : at->parent;
            leave_freed(at);
            at = parent;
        }
    }
}

void saifout_free_tree(SaifTree *tree) {
    if (tree == nullptr) {
        return;
    }
    free_tree(tree->root);
    free(tree->root);
    free(tree->path.text);
    free(tree->path.levels);
    free(tree);
}
