// SPDX-License-Identifier: Apache-2.0
// The yardstick for replay: the least that counting a VCD file can mean. It splits the file into
// tokens and keeps T0, T1, TX and TC for each bit of each id code; no names, no hierarchy, no
// report. One thread, portable code. Usage: bare_counter FILE
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

struct Bit {
    uint64_t since = 0;
    std::array<uint64_t, 3> ticks{};  // at 0, at 1, unknown
    uint32_t toggles = 0;
    uint8_t state = 2;  // 0, 1, 2: unknown
    uint8_t known = 2;  // the last known level, 2 before the first
};

struct Variable {
    uint32_t first;  // in `bits` and, for its last text, in `texts`
    uint32_t width;
};

std::vector<Bit> bits;
std::vector<char> texts;
std::vector<Variable> variables;  // by id code as a number
uint64_t now = 0;

[[noreturn]] void stop(const char *what) {
    std::fprintf(stderr, "bare_counter: %s\n", what);
    std::exit(1);
}

// What a value's character means: 0, 1 or unknown.
constexpr std::array<uint8_t, 256> make_states() {
    std::array<uint8_t, 256> states{};
    states.fill(2);
    states['0'] = 0;
    states['1'] = 1;
    return states;
}
constexpr std::array<uint8_t, 256> states = make_states();

struct Text {
    const char *at;
    const char *end;
};

bool is_blank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

void skip_blanks(Text &text) {
    while (text.at != text.end && is_blank(*text.at)) {
        ++text.at;
    }
}

std::string_view next_word(Text &text) {
    skip_blanks(text);
    const char *start = text.at;
    while (text.at != text.end && !is_blank(*text.at)) {
        ++text.at;
    }
    return {start, static_cast<size_t>(text.at - start)};
}

// Reads an id code as a number in base 94; codes that simulators write are short and dense.
uint32_t next_code(Text &text) {
    uint32_t number = 0;
    for (; text.at != text.end && !is_blank(*text.at); ++text.at) {
        number = number * 94 + static_cast<uint32_t>(*text.at - '!') + 1;
    }
    return number;
}

void declare(std::string_view width_text, uint32_t number) {
    if (number > 100'000'000) {
        stop("an id code is not dense");
    }
    if (number >= variables.size()) {
        variables.resize(number + 1, Variable{0, 0});
    }
    if (variables[number].width == 0) {
        const auto width = static_cast<uint32_t>(std::atoi(width_text.data()));
        variables[number] = {static_cast<uint32_t>(bits.size()), width};
        bits.resize(bits.size() + width);
        texts.resize(bits.size() + 8, 'x');
    }
}

void read_declarations(Text &text) {
    for (;;) {
        const std::string_view word = next_word(text);
        if (word.empty()) {
            stop("no end of the declarations");
        }
        if (word == "$enddefinitions") {
            return;
        }
        if (word == "$var") {
            next_word(text);
            const std::string_view width = next_word(text);
            skip_blanks(text);
            declare(width, next_code(text));
        }
    }
}

void change(Bit &bit, uint8_t state) {
    bit.ticks[bit.state] += now - bit.since;
    bit.since = now;
    bit.state = state;
    if (state != 2) {
        bit.toggles += bit.known != 2 && bit.known != state ? 1 : 0;
        bit.known = state;
    }
}

void change_scalar(char value, uint32_t code) {
    Bit &bit = bits[variables[code].first];
    const uint8_t state = states[static_cast<unsigned char>(value)];
    if (state != bit.state) {
        change(bit, state);
    }
}

void change_vector(std::string_view value, uint32_t code) {
    const Variable variable = variables[code];
    char *last = texts.data() + variable.first;
    uint32_t missing = 0;
    if (value.size() < variable.width) {
        missing = variable.width - static_cast<uint32_t>(value.size());
        const char fill = value[0] == '1' ? '0' : value[0];
        for (uint32_t i = 0; i < missing; ++i) {
            if (last[i] != fill) {
                last[i] = fill;
                change(bits[variable.first + i], states[static_cast<unsigned char>(fill)]);
            }
        }
    }
    for (uint32_t i = missing; i < variable.width; ++i) {
        const char c = value[i - missing];
        if (last[i] != c) {
            last[i] = c;
            change(bits[variable.first + i], states[static_cast<unsigned char>(c)]);
        }
    }
}

void read_vector(Text &text) {
    const std::string_view value = next_word(text);
    skip_blanks(text);
    change_vector(value, next_code(text));
}

uint64_t next_number(Text &text) {
    uint64_t number = 0;
    for (; text.at != text.end && !is_blank(*text.at); ++text.at) {
        number = number * 10 + static_cast<uint64_t>(*text.at - '0');
    }
    return number;
}

void read_changes(Text &text) {
    for (skip_blanks(text); text.at != text.end; skip_blanks(text)) {
        const char first = *text.at++;
        switch (first) {
            case '#':
                now = next_number(text);
                break;
            case 'b':
            case 'B':
                read_vector(text);
                break;
            case 'r':
            case 'R':
                next_word(text);
                next_word(text);
                break;
            case '$':
                next_word(text);
                break;
            default:
                change_scalar(first, next_code(text));
        }
    }
}

void print_sums() {
    std::array<uint64_t, 3> ticks{};
    uint64_t toggles = 0;
    for (Bit &bit : bits) {
        bit.ticks[bit.state] += now - bit.since;
        for (size_t i = 0; i < 3; ++i) {
            ticks[i] += bit.ticks[i];
        }
        toggles += bit.toggles;
    }
    std::printf(
        "bits %zu T0 %llu T1 %llu TX %llu TC %llu\n", bits.size(),
        static_cast<unsigned long long>(ticks[0]), static_cast<unsigned long long>(ticks[1]),
        static_cast<unsigned long long>(ticks[2]), static_cast<unsigned long long>(toggles));
}

}  // namespace

int main(int count, char **arguments) {
    const int file = count == 2 ? open(arguments[1], O_RDONLY) : -1;
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) {
        stop("usage: bare_counter FILE");
    }
    const auto size = static_cast<size_t>(status.st_size);
    void *memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    if (memory == MAP_FAILED) {
        stop("the file cannot be mapped");
    }
    madvise(memory, size, MADV_SEQUENTIAL);
    const char *start = static_cast<const char *>(memory);
    Text text{start, start + size};
    read_declarations(text);
    read_changes(text);
    print_sums();
    return 0;
}
