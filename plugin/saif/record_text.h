// SPDX-License-Identifier: Apache-2.0
// Gathers the many small pieces of one record and hands them to the stream together: entering the C
// library ten times for each watched bit would cost more than making the text. Touches nothing.
#ifndef WATTFORGE_PLUGIN_SAIF_RECORD_TEXT_H
#define WATTFORGE_PLUGIN_SAIF_RECORD_TEXT_H

#include <cstddef>
#include <cstdio>

// A record in the making. Any amount may be put; what does not fit goes to the stream at once.
struct RecordText {
    FILE *stream;
    size_t length;
    char room[1024];
};

void record_begin(RecordText *record, FILE *stream);
void record_put(RecordText *record, const char *text, size_t length);
void record_put_blanks(RecordText *record, int count);    // none when the count is 0 or less
void record_put_fixed(RecordText *record, double value);  // as printf's "%f"

// A constant text, whose length the compiler knows.
template <size_t size>
void record_put(RecordText *record, const char (&text)[size]) {
    record_put(record, text, size - 1);
}

// Hands over what is left. A failed write shows in the stream's error indicator.
void record_end(RecordText *record);

#endif
