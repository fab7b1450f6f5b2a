// SPDX-License-Identifier: Apache-2.0
// The writer's tree and the file that it makes, character by character, from trees built by hand.
#include "plugin/saif/writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "plugin/saif/legal_name.h"
#include "plugin/saif/report_tree.h"

#include <cerrno>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

void print_object(FILE *stream, const dstring *name, void *, double, int indentation) {
    fprintf(stream, "%*s%s\n", indentation, "", string_to_char(name));
}

void print_leak(FILE *stream, void *info, int indentation) {
    fprintf(stream, "%*sleak %s\n", indentation, "", static_cast<const char *>(info));
}

const char *const date_line = "\\(DATE \"[A-Z][a-z]+ [A-Z][a-z]+ [ 1-3][0-9] [0-9:]+ [0-9]+\"\\)";

struct Tree {
    SaifTree *tree = saifout_create_tree(nullptr, nullptr, nullptr, nullptr);
    Tree() {
        saifout_register_net_print_function(tree, print_object);
        saifout_register_port_print_function(tree, print_object);
        saifout_register_node_print_function(tree, node_print);
        saifout_register_leak_print_function(tree, print_leak);
    }
    ~Tree() { saifout_free_tree(tree); }
    Tree(const Tree &) = delete;
    Tree &operator=(const Tree &) = delete;

    void port(const char *name) { enter(name, 1); }
    void net(const char *name) { enter(name, 0); }
    void enter(const char *name, int is_port) {
        EXPECT_EQ(saifout_insert_port_net_full_hier(name, nullptr, is_port, tree), 1) << name;
    }
    SaifTreeNode *find(const char *name, char divider = '/') {
        return saifout_find_node(name, divider, tree);
    }
    SaifTreeNode *create(const char *name, char divider = '/', void *info = nullptr) {
        return saifout_create_node(name, divider, info, nullptr, tree);
    }

    // The file, with the date replaced by DATE.
    std::string file(saif_header *header) {
        char *text = nullptr;
        size_t length = 0;
        header->output = open_memstream(&text, &length);
        EXPECT_EQ(saifout_generate_saif(header, tree, 1.0), 1);
        fclose(header->output);
        std::string result(text, length);
        const size_t start = result.find("(DATE");
        if (start != std::string::npos) {
            const size_t end = result.find('\n', start);
            EXPECT_THAT(result.substr(start, end - start), testing::MatchesRegex(date_line));
            result.replace(start, end - start, "DATE");
        }
        free(text);
        return result;
    }
    // What stands between header and trailer.
    std::string body() {
        saif_header *header = saif_create_header_struct();
        const std::string text = file(header);
        saif_free_header_struct(header);
        const size_t start = text.find("(DURATION 0.00)\n") + 16;
        return text.substr(start, text.size() - start - 2);
    }
};

TEST(Writer, WritesPortsNetsLeaksAndInstancesInOrder) {
    Tree tree;
    tree.net("/top/u2/n");
    tree.port("/top/b");
    tree.net("top/a");  // a leading divider makes no difference
    tree.port("/top/a");
    tree.port("/top/u1/deep/p");
    tree.port("/top/b");  // twice in, twice out
    tree.create("/top/empty");
    char info[] = "here";
    EXPECT_EQ(saifout_insert_leak_info_at_this_level(tree.find("/top/u1"), info), 1);
    EXPECT_EQ(saifout_insert_leak_info_at_this_level(nullptr, info), 0);
    EXPECT_EQ(tree.body(), R"((INSTANCE top
   (PORT
      b
      a
      b
   )
   (NET
      a
   )
   (INSTANCE u2
      (NET
         n
      )
   )
   (INSTANCE u1
      leak here
      (INSTANCE deep
         (PORT
            p
         )
      )
   )
   (INSTANCE empty
   )
)
)");
}

TEST(Writer, WritesTheHeaderOfEitherDirection) {
    struct Row {
        const char *design;
        const char *vendor;
        const char *program;
        int direction;
        const char *expected;
    };
    const Row rows[] = {
        {nullptr, "Kelvara, Inc", nullptr, 0,
         "(SAIFILE\n(SAIFVERSION \"2.0\")\n(DIRECTION \"backward\")\n(DESIGN )\nDATE\n"
         "(VENDOR \"Kelvara, Inc\")\n(PROGRAM_NAME )\n(VERSION )\n(DIVIDER / )\n"
         "(TIMESCALE 10 ps)\n(DURATION 12.35)\n)\n"},
        {"d", nullptr, "p", 1,
         "(SAIFILE\n(SAIFVERSION \"2.0\")\n(DIRECTION \"forward\")\n(DESIGN \"d\")\nDATE\n"
         "(VENDOR \"Kelvara, Inc.\")\n(PROGRAM_NAME \"p\")\n(VERSION \"p\")\n(DIVIDER / )\n)\n"},
    };
    for (const Row &row : rows) {
        saif_header header = {};
        header.duration = 12.345678;
        header.timescale_value = 10.0F;
        header.timescale_unit = string_alloc("ps");
        header.saif_version = string_alloc("\"2.0\"");
        header.design = row.design != nullptr ? string_alloc(row.design) : nullptr;
        header.vendor = row.vendor != nullptr ? string_alloc(row.vendor) : nullptr;
        header.program_name = row.program != nullptr ? string_alloc(row.program) : nullptr;
        header.program_version = string_dup(header.program_name);
        header.direction = row.direction;
        header.divider = '/';
        EXPECT_EQ(Tree().file(&header), row.expected);
        for (dstring *text : {header.timescale_unit, header.saif_version, header.design,
                              header.vendor, header.program_name, header.program_version}) {
            string_free(text);
        }
    }
}

TEST(Writer, EscapesWhatIsNotAnIdentifier) {
    const char *const rows[][2] = {
        {"clk", "clk"},
        {"_x9", "_x9"},
        {"3state", "\\3state"},
        {"data[3]", "data\\[3\\]"},
        {"bus(0)", "bus\\(0\\)"},
        {"a.b", "a\\.b"},
        {"/b", "\\/b"},
        {"a/b", "a/b"},
        {"", ""},
        {"a\\b", "a\\\\b"},
        {"a b$", "a\\ b\\$"},
        {"\xc3\xa4", "\\\xc3\\\xa4"},
    };
    for (const auto &row : rows) {
        dstring *name = string_alloc(row[0]);
        chg_to_saif_name(&name);
        EXPECT_STREQ(string_to_char(name), row[1]);
        EXPECT_EQ(string_len(name), std::string(row[1]).size());
        string_free(name);
    }
    dstring *wide = string_alloc(std::string(300, '.').c_str());
    chg_to_saif_name(&wide);
    EXPECT_EQ(string_len(wide), 600U);
    string_free(wide);
    dstring *twice = string_alloc("a.b");
    chg_to_saif_name(&twice);
    chg_to_saif_name(&twice);
    EXPECT_STREQ(string_to_char(twice), "a\\\\\\.b");
    string_free(twice);
}

TEST(Writer, DropsWhatHasNoInstance) {
    Tree tree;
    tree.net("n[1]");
    tree.port("/p1");
    tree.net("n2");
    tree.port("p2");
    CaptureStdout();
    EXPECT_EQ(tree.body(), "");
    const auto line = [](const char *what) {
        return std::string("Warning: ") + what +
               " is ignored because no containing module\n         is found\n";
    };
    EXPECT_EQ(GetCapturedStdout(),
              line("PORT p1") + line("PORT p2") + line("NET n\\[1\\]") + line("NET n2"));
}

TEST(Writer, SaysWhenTheStreamFailed) {
    Tree tree;
    tree.port("/top/a");
    saif_header *header = saif_create_header_struct();
    header->output = fopen("/dev/full", "w");
    EXPECT_EQ(saifout_generate_saif(header, tree.tree, 1.0), 0);
    EXPECT_EQ(errno, ENOSPC);
    fclose(header->output);
    // A write that failed is a failure also where all that follow succeed.
    int writes = 0;
    const auto fail_once = [](void *count, const char *, size_t size) -> ssize_t {
        return (*static_cast<int *>(count))++ == 0 ? 0 : static_cast<ssize_t>(size);
    };
    header->output = fopencookie(&writes, "w", {nullptr, fail_once, nullptr, nullptr});
    setvbuf(header->output, nullptr, _IONBF, 0);
    EXPECT_EQ(saifout_generate_saif(header, tree.tree, 1.0), 0);
    fclose(header->output);
    saif_free_header_struct(header);
}

TEST(Tree, FindsAndCreatesNodes) {
    Tree tree;
    EXPECT_EQ(saifout_tree_is_empty(tree.tree), 1);
    EXPECT_EQ(tree.find("/top/u1"), nullptr);
    EXPECT_EQ(saifout_tree_is_empty(tree.tree), 1);
    char one[] = "1";
    char two[] = "2";
    SaifTreeNode *node = tree.create("top.u1", '.', one);
    EXPECT_EQ(saifout_tree_is_empty(tree.tree), 0);
    EXPECT_EQ(tree.find("/top/u1"), node);
    EXPECT_EQ(tree.find("/top/u1/"), node);
    EXPECT_EQ(tree.find("top.u1", '/'), nullptr);
    EXPECT_EQ(tree.create("/top/u1", '/', two), node);
    EXPECT_EQ(node->node_info, one);  // an existing node keeps what it has
    EXPECT_EQ(tree.find("/top")->node_info, nullptr);
    // The path of the last name does not mislead a name that ends on it, nor another divider.
    tree.port("/top/u1/u2/p");
    EXPECT_EQ(tree.find("/top/u1/"), node);
    tree.create("x/y.z.p", '.');
    EXPECT_EQ(tree.find("x/y.z.p"), nullptr);
    EXPECT_EQ(tree.find("x/y.q", '.'), nullptr);
    dstring *name = string_alloc("p");
    EXPECT_EQ(saifout_insert_port_net_at_this_level(node, name, nullptr, 1), 1);
    EXPECT_EQ(saifout_insert_port_net_at_this_level(node, name, nullptr, 2), 0);
    EXPECT_EQ(saifout_insert_port_net_at_this_level(nullptr, name, nullptr, 1), 0);
    string_free(name);
    EXPECT_EQ(node->ports->count, 1U);
    EXPECT_EQ(node->nets->count, 0U);
}

// The path of the last name and the index of children are short cuts: whatever comes in whatever
// order must lead to the node that a search from the root finds.
TEST(Tree, TakesNoWrongShortCut) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    Tree tree;
    std::vector<std::pair<std::string, SaifTreeNode *>> made;
    for (int step = 0; step < 5000; ++step) {
        std::string name;
        const size_t depth = 1 + random() % 5;
        for (size_t level = 0; level < depth; ++level) {
            // Names that begin alike, and now and then a divider too many.
            name += (random() % 50 == 0 ? "//" : "/") + std::string(1 + random() % 2, 'u') +
                    std::to_string(random() % 12);
        }
        if (random() % 3 == 0) {
            tree.enter((name + "/leaf").c_str(), random() % 2 != 0 ? 1 : 0);
        }
        made.emplace_back(name, tree.create(name.c_str()));
        const auto &[other, node] = made[random() % made.size()];
        ASSERT_EQ(tree.find(other.c_str()), node) << other << " after " << name;
    }
    for (const auto &[name, node] : made) {
        // Component by component, by the lists alone.
        const SaifTreeNode *at = tree.tree->root;
        const char *text = name.c_str() + 1;
        for (int more = 1; more != 0;) {
            saif_list_entry probe = {nullptr, nullptr};
            more = get_hier_level(text, '/', &probe.key, &text);
            const saif_list_item *item = saif_list_find(at->children, &probe);
            string_free(probe.key);
            ASSERT_NE(item, nullptr) << name;
            at = static_cast<const SaifTreeNode *>(item->data);
        }
        ASSERT_EQ(at, node) << name;
    }
}

TEST(Tree, IsAsDeepAsTheDesign) {
    std::string name;
    for (int level = 0; level < 100000; ++level) {
        name += "/u";
    }
    SaifTree *tree = saifout_create_tree(nullptr, nullptr, nullptr, nullptr);
    for (const char *leaf : {"/a", "/b", "/c"}) {
        EXPECT_EQ(saifout_insert_port_net_full_hier((name + leaf).c_str(), nullptr, 1, tree), 1);
    }
    saif_header *header = saif_create_header_struct();
    header->output = fopen("/dev/null", "w");
    EXPECT_EQ(saifout_generate_saif(header, tree, 1.0), 1);  // default functions: no blanks
    fclose(header->output);
    saif_free_header_struct(header);
    saifout_free_tree(tree);
}

}  // namespace
