// SPDX-License-Identifier: Apache-2.0
// The SAIF file: header, body, trailer.
#include "plugin/saif/writer.h"

#include "plugin/saif/legal_name.h"
#include "plugin/saif/record_text.h"

#include <cstring>
#include <ctime>

// What the tree being written prints with, and how deep the writer is.
static saif_net_print_fn generate_saif_for_net;
static saif_net_print_fn generate_saif_for_port;
static saif_node_print_fn generate_saif_for_node;
static saif_leak_print_fn generate_saif_for_leak;
static int ident_space;

// A line of the writer's own, as deep as the writer is.
static void generate_line(FILE *stream, const char *line) {
    RecordText record;
    record_begin(&record, stream);
    record_put_blanks(&record, ident_space);
    record_put(&record, line, strlen(line));
    record_end(&record);
}

// A name without any instance has no place in the file. The list is gone afterwards.
static void ignore_at_root(saif_list **list, const char *kind) {
    if (*list == nullptr) {
        return;
    }
    for (saif_list_item *item = (*list)->head; item != nullptr; item = item->next) {
        chg_to_saif_name(&item->key);
        printf(
            "Warning: %s %s is ignored because no containing module\n"
            "         is found\n",
            kind, string_to_char(item->key));
    }
    saif_list_free(*list);
    *list = nullptr;
}

static void validate_tree(SaifTree *tree) {
    ignore_at_root(&tree->root->ports, "PORT");
    ignore_at_root(&tree->root->nets, "NET");
}

// "(KEYWORD "text")", or "(KEYWORD )" for a null text.
static void generate_quoted(FILE *stream, const char *keyword, const dstring *text) {
    if (text != nullptr) {
        fprintf(stream, "(%s \"%s\")\n", keyword, string_to_char(text));
    } else {
        fprintf(stream, "(%s )\n", keyword);
    }
}

static void generate_date(FILE *stream) {
    const time_t now = time(nullptr);
    const char *text = ctime(&now);
    if (text == nullptr) {
        text = "";
    }
    fprintf(stream, "(DATE \"%.*s\")\n", static_cast<int>(strcspn(text, "\n")), text);
}

static void generate_saif_header(const saif_header *header) {
    FILE *stream = header->output;
    const bool backward = header->direction == 0;
    fputs("(SAIFILE\n", stream);
    fprintf(stream, "(SAIFVERSION %s)\n", string_to_char(header->saif_version));
    fprintf(stream, "(DIRECTION \"%s\")\n", backward ? "backward" : "forward");
    generate_quoted(stream, "DESIGN", header->design);
    generate_date(stream);
    // The stand-in for a missing vendor ends in a full stop, which the usual text has not.
    const dstring *vendor = header->vendor;
    fprintf(stream, "(VENDOR \"%s\")\n",
            vendor != nullptr ? string_to_char(vendor) : "Kelvara, Inc.");
    generate_quoted(stream, "PROGRAM_NAME", header->program_name);
    generate_quoted(stream, "VERSION", header->program_version);
    fprintf(stream, "(DIVIDER %c )\n", header->divider);
    if (!backward) {
        return;
    }
    fprintf(stream, "(TIMESCALE %.f %s)\n", static_cast<double>(header->timescale_value),
            string_to_char(header->timescale_unit));
    fprintf(stream, "(DURATION %.2f)\n", header->duration);
}

static void generate_close(FILE *stream) {
    ident_space -= INDENTATION_STEP;
    generate_line(stream, ")\n");
}

static void generate_objects(FILE *stream, const saif_list *objects, const char *opening,
                             saif_net_print_fn print, double scale) {
    if (objects == nullptr || saif_list_is_empty(objects)) {
        return;
    }
    generate_line(stream, opening);
    ident_space += INDENTATION_STEP;
    for (saif_list_item *item = objects->head; item != nullptr; item = item->next) {
        chg_to_saif_name(&item->key);
        print(stream, item->key, item->data, scale, ident_space);
    }
    generate_close(stream);
}

// What stands in an instance before its instances.
static void generate_node(FILE *stream, SaifTreeNode *node, double scale) {
    generate_objects(stream, node->ports, "(PORT\n", generate_saif_for_port, scale);
    generate_objects(stream, node->nets, "(NET\n", generate_saif_for_net, scale);
    if (node->leak_info != nullptr) {
        generate_saif_for_leak(stream, node->leak_info, ident_space);
    }
    saif_forget_child_index(node);
    node->walk = node->children != nullptr ? node->children->head : nullptr;
}

static SaifTreeNode *generate_opening(FILE *stream, saif_list_item *child) {
    auto *node = static_cast<SaifTreeNode *>(child->data);
    chg_to_saif_name(&child->key);
    generate_saif_for_node(stream, child->key, node->node_info, &ident_space);
    return node;
}

// Goes through the instances by the nodes' own links, like free_tree. Ends early when the stream
// has failed.
static void generate_saif_body(FILE *stream, SaifTreeNode *root, double scale) {
    generate_node(stream, root, scale);
    for (SaifTreeNode *at = root; at->walk != nullptr || at != root;) {
        if (at->walk != nullptr) {
            saif_list_item *child = at->walk;
            at->walk = child->next;
            at = generate_opening(stream, child);
            generate_node(stream, at, scale);
            if (ferror(stream)) {
                return;
            }
        } else {
            generate_close(stream);
            at = at->parent;
        }
    }
}

static void generate_saif_trailer(FILE *stream) {
    fputs(")\n", stream);
}

int saifout_generate_saif(const saif_header *header, SaifTree *tree, double scale) {
    if (tree->root == nullptr || tree->print_net == nullptr || tree->print_port == nullptr ||
        tree->print_node == nullptr || tree->print_leak == nullptr) {
        return 1;
    }
    generate_saif_for_net = tree->print_net;
    generate_saif_for_port = tree->print_port;
    generate_saif_for_node = tree->print_node;
    generate_saif_for_leak = tree->print_leak;
    validate_tree(tree);
    ident_space = 0;
    generate_saif_header(header);
    generate_saif_body(header->output, tree->root, scale);
    generate_saif_trailer(header->output);
    return fflush(header->output) == 0 && !ferror(header->output);
}
