// SPDX-License-Identifier: Apache-2.0
// The stack of input streams below the forward SAIF scanner: characters in, characters pushed back,
// and what is remembered for each open stream. Knows nothing of tokens.
//
// One scanner in a process, so all of this is global. The shortcuts (saifrtl_yyline and its
// siblings) always name a field of the top record; while no stream is open they name those of an
// idle record that is at end of input, and saifrtl_yyline keeps the line at which input ended.
#ifndef WATTFORGE_PLUGIN_RTLSAIF_INPUT_STREAM_H
#define WATTFORGE_PLUGIN_RTLSAIF_INPUT_STREAM_H

#include <cstdint>
#include <cstdio>

// Returns the next character of a stream, or EOF.
typedef int (*saifrtl_read_op)(FILE *stream);
// Takes back one character, to be read next.
typedef void (*saifrtl_unget_op)(int character);

struct SaifrtlInputStream {
    char *file_name;             // owned copy of the name given at the opening
    int32_t line;                // line of the next character, from 1
    uint32_t pushback_count;     // characters in the push-back buffer
    char *pushback;              // owned; 512 bytes at first, more when a token backs off further
    uint32_t pushback_capacity;  // bytes of the push-back buffer
    FILE *stream;                // read from here; closed by the pop when close_on_pop is set
    saifrtl_read_op read;
    saifrtl_unget_op unget;
    int16_t close_on_pop;
    char hierarchy_divider;               // separates the parts of a path: '.' until told otherwise
    int16_t expecting_divider;            // 1: that character is a token
    int16_t expecting_divider_candidate;  // 1: any punctuation character is a token
};

extern SaifrtlInputStream
    *saifrtl_input_stream;                      // the records, bottom first; null before the set-up
extern int32_t saifrtl_n_input_stream;          // open streams
extern SaifrtlInputStream *saifrtl_top_stream;  // the top record, or the idle one; never null

inline FILE *&lexin() {
    return saifrtl_top_stream->stream;
}
inline uint32_t &npushback() {
    return saifrtl_top_stream->pushback_count;
}
inline saifrtl_read_op &get_func() {
    return saifrtl_top_stream->read;
}
inline saifrtl_unget_op &unget_func() {
    return saifrtl_top_stream->unget;
}
inline char *&saifrtl_yyfile() {
    return saifrtl_top_stream->file_name;
}
inline int32_t &saifrtl_yyline() {
    return saifrtl_top_stream->line;
}
inline char &saifrtl_hierarchy_divider() {
    return saifrtl_top_stream->hierarchy_divider;
}
inline int16_t &saifrtl_expecting_divider() {
    return saifrtl_top_stream->expecting_divider;
}
inline int16_t &saifrtl_expecting_divider_candidate() {
    return saifrtl_top_stream->expecting_divider_candidate;
}

// Makes an empty stack that takes depth + 1 streams.
void saifrtl_init_streams(int32_t depth);

// Pops every open stream and frees the stack. Harmless when there is none.
void saifrtl_free_streams();

// Pushes a stream, which inherits divider and flags from the one below; null operations select the
// defaults (one character from `stream`; the record's own push-back buffer). More than depth + 1
// streams are an error of the file being read. Returns 1, or 0 when nothing was pushed; the
// stream is then still the caller's.
int saifrtl_local_open_stream(FILE *stream, const char *name, saifrtl_read_op read_op,
                              saifrtl_unget_op unget_op, int close_on_pop);

// Pops the top stream, closing it when it was pushed so (standard input never is). Reading goes on
// exactly where the stream below was left. Does nothing when no stream is open.
void saifrtl_close_stream();

// Pops the top stream at its end: 1 when none is left, 0 when reading goes on below.
int saifrtl_yywrap();

// The next character of the top stream, 0 at its end; counts lines.
int saifrtl_yyinput();

// Hands a character back to the top stream; uncounts its line.
void saifrtl_yyunput(int character);

// Where reading stands. The name is null while no stream is open.
int32_t saifrtl_current_line();
const char *saifrtl_current_file();

#endif
