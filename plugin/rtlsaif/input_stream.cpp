// SPDX-License-Identifier: Apache-2.0
// The stack of input streams below the forward SAIF scanner.
#include "plugin/rtlsaif/input_stream.h"

#include "plugin/rtlsaif/syntax_error.h"
#include "plugin/support/text.h"

#include <cstdlib>

static constexpr uint32_t FIRST_PUSHBACK_CAPACITY = 512;
static constexpr char DEFAULT_DIVIDER = '.';

static int at_end(FILE *) {
    return EOF;
}
static void forget(int) {
}

static SaifrtlInputStream idle_stream = {nullptr, 0,      0, nullptr,         0, nullptr,
                                         at_end,  forget, 0, DEFAULT_DIVIDER, 1, 0};

SaifrtlInputStream *saifrtl_input_stream = nullptr;
int32_t saifrtl_n_input_stream = 0;
SaifrtlInputStream *saifrtl_top_stream = &idle_stream;
static int32_t max_stack_depth = 0;

static int read_from_file(FILE *stream) {
    return stream == nullptr ? EOF : getc_unlocked(stream);
}

// A failed allocation drops the character: input is damaged then, memory is not.
static void push_on_buffer(int character) {
    SaifrtlInputStream *top = saifrtl_top_stream;
    if (top->pushback_count == top->pushback_capacity) {
        const uint32_t capacity =
            top->pushback_capacity == 0 ? FIRST_PUSHBACK_CAPACITY : 2 * top->pushback_capacity;
        char *grown = static_cast<char *>(realloc(top->pushback, capacity));
        if (grown == nullptr) {
            return;
        }
        top->pushback = grown;
        top->pushback_capacity = capacity;
    }
    top->pushback[top->pushback_count++] = static_cast<char>(character);
}

// Makes the topmost open record the top, or the idle one when none is left.
static void select_top() {
    const int32_t last_line = saifrtl_top_stream->line;
    if (saifrtl_n_input_stream > 0) {
        saifrtl_top_stream = &saifrtl_input_stream[saifrtl_n_input_stream - 1];
        return;
    }
    saifrtl_top_stream = &idle_stream;
    idle_stream.line = last_line;
    idle_stream.hierarchy_divider = DEFAULT_DIVIDER;
    idle_stream.expecting_divider = 1;
    idle_stream.expecting_divider_candidate = 0;
}

void saifrtl_init_streams(int32_t depth) {
    saifrtl_free_streams();
    idle_stream.line = 0;
    max_stack_depth = depth;
    const size_t records = depth < 0 ? 1 : static_cast<size_t>(depth) + 1;
    saifrtl_input_stream =
        static_cast<SaifrtlInputStream *>(calloc(records, sizeof(SaifrtlInputStream)));
}

void saifrtl_free_streams() {
    while (saifrtl_n_input_stream > 0) {
        saifrtl_close_stream();
    }
    free(saifrtl_input_stream);
    saifrtl_input_stream = nullptr;
}

int saifrtl_local_open_stream(FILE *stream, const char *name, saifrtl_read_op read_op,
                              saifrtl_unget_op unget_op, int close_on_pop) {
    if (saifrtl_input_stream == nullptr) {
        return 0;
    }
    if (saifrtl_n_input_stream > max_stack_depth) {
        saifrtl_yyerror("Include File Nesting too deep");
        return 0;
    }
    const SaifrtlInputStream *below = saifrtl_top_stream;
    SaifrtlInputStream *record = &saifrtl_input_stream[saifrtl_n_input_stream++];
    *record = {};
    record->file_name = mfli_strdup(name);
    record->line = 1;
    record->stream = stream;
    record->read = read_op != nullptr ? read_op : read_from_file;
    record->unget = unget_op != nullptr ? unget_op : push_on_buffer;
    record->close_on_pop = static_cast<int16_t>(close_on_pop != 0);
    record->hierarchy_divider = below->hierarchy_divider;
    record->expecting_divider = below->expecting_divider;
    record->expecting_divider_candidate = below->expecting_divider_candidate;
    saifrtl_top_stream = record;
    return 1;
}

void saifrtl_close_stream() {
    if (saifrtl_n_input_stream == 0) {
        return;
    }
    SaifrtlInputStream *popped = &saifrtl_input_stream[--saifrtl_n_input_stream];
    if (popped->close_on_pop != 0 && popped->stream != nullptr && popped->stream != stdin) {
        (void)fclose(popped->stream);
    }
    popped->stream = nullptr;
    select_top();
    free(popped->file_name);
    free(popped->pushback);
    popped->file_name = nullptr;
    popped->pushback = nullptr;
}

int saifrtl_yywrap() {
    saifrtl_close_stream();
    return saifrtl_n_input_stream == 0 ? 1 : 0;
}

int saifrtl_yyinput() {
    SaifrtlInputStream *top = saifrtl_top_stream;
    int character = top->pushback_count > 0
                        ? static_cast<unsigned char>(top->pushback[--top->pushback_count])
                        : top->read(top->stream);
    character = character == EOF ? 0 : character & 0xff;
    if (character == '\n') {
        ++top->line;
    }
    return character;
}

void saifrtl_yyunput(int character) {
    SaifrtlInputStream *top = saifrtl_top_stream;
    if (character == '\n') {
        --top->line;
    }
    top->unget(character);
}

int32_t saifrtl_current_line() {
    return saifrtl_yyline();
}

const char *saifrtl_current_file() {
    return saifrtl_yyfile();
}
