// SPDX-License-Identifier: Apache-2.0
// The grammar of forward SAIF files. What the rules do to the tables stands in reader_state.h; here
// is only when they do it.
//
// Several actions change how the scanner reads what follows (keywords on or off, dividers on or
// off), so each must run before the next token is read. They do: every one of them is the only
// thing that its state can do, and such a state reduces without looking ahead. Whoever changes a
// rule keeps that, and gives actions that two alternatives share to a rule of their own.
%require "3.8"
%define api.prefix {saifrtl_yy}
%define api.token.prefix {SAIFRTL_}
%define parse.error simple

%code requires {
struct dstring;
}

%code {
#include "plugin/rtlsaif/input_stream.h"
#include "plugin/rtlsaif/reader_state.h"
#include "plugin/rtlsaif/scanner.h"
#include "plugin/rtlsaif/syntax_error.h"
#include "plugin/support/counted_string.h"

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000
}

%union {
    dstring *text;
    char character;
}

// 271 is reserved.
%token PORT 258 NET 259 SAIFILE 260 INSTANCE 261 DATE 262 DESIGN 263 DIRECTION 264 DIVIDER 265
%token DIVIDER_CHARACTER 266 HIERARCHY_DIVIDER 267 IDENTIFIER 268 LEFT_PAREN 269
%token MPM_INSTANCE 270 PROGRAM_NAME 272 STRING 273 RIGHT_PAREN 274
%token SAIFVERSION 275 VENDOR 276 VERSION 277

%type <text> identifier string opt_string path
%type <character> divider_character
%destructor { string_free($$); } <text>

%%

file:
    { saifrtl_expecting_divider() = 1; }
    LEFT_PAREN { saifrtl_expecting_keyword = 1; }
    SAIFILE { saifrtl_forget_file_state(); }
    header instance_list RIGHT_PAREN
    {
        saifrtl_forget_file_state();
        saifrtl_expecting_divider() = 0;
    }
    ;

header:
    LEFT_PAREN SAIFVERSION ignored_string RIGHT_PAREN
    LEFT_PAREN DIRECTION ignored_string RIGHT_PAREN
    LEFT_PAREN DESIGN ignored_opt_string RIGHT_PAREN
    LEFT_PAREN DATE ignored_opt_string RIGHT_PAREN
    LEFT_PAREN VENDOR ignored_opt_string RIGHT_PAREN
    LEFT_PAREN PROGRAM_NAME ignored_opt_string RIGHT_PAREN
    LEFT_PAREN VERSION ignored_opt_string RIGHT_PAREN
    divider_entry
    ;

ignored_opt_string:
    %empty
  | ignored_string
    ;

ignored_string:
    STRING
    ;

divider_entry:
    LEFT_PAREN { saifrtl_expecting_divider_candidate() = 1; } DIVIDER divider
    ;

divider:
    RIGHT_PAREN                            { saifrtl_set_hierarchy_divider('.'); }
  | divider_character                      { saifrtl_set_hierarchy_divider($1); }
    RIGHT_PAREN
    ;

divider_character:
    DIVIDER_CHARACTER                      { $$ = saifrtl_current_tok()[0]; }
    ;

instance_list:
    instance
  | instance_list instance
    ;

instance:
    LEFT_PAREN INSTANCE opt_string path        { saifrtl_enter_instance($path); }
    body RIGHT_PAREN
    {
        saifrtl_leave_instance($path);
        string_free($opt_string);
        string_free($path);
    }
  | LEFT_PAREN MPM_INSTANCE opt_string path    { saifrtl_enter_mpm_instance($path, $opt_string); }
    body RIGHT_PAREN
    {
        saifrtl_leave_instance($path);
        string_free($opt_string);
        string_free($path);
    }
    ;

body:
    blocks
  | blocks instance_list
    ;

blocks:
    %empty
  | blocks LEFT_PAREN PORT { saifrtl_is_port = 1; } entry_list RIGHT_PAREN
  | blocks LEFT_PAREN NET { saifrtl_is_port = 0; } entry_list RIGHT_PAREN
    ;

entry_list:
    entry
  | entry_list entry
    ;

entry:
    LEFT_PAREN { saifrtl_expecting_keyword = 0; } path[first] path[second] opt_string RIGHT_PAREN
    {
        saifrtl_store_entry($first, $second, $opt_string);
        string_free($first);
        string_free($second);
        string_free($opt_string);
        saifrtl_expecting_keyword = 1;
    }
    ;

path:
    identifier
  | path HIERARCHY_DIVIDER identifier
    {
        $$ = $1;
        string_concat_ch(&$$, '/');
        string_concat(&$$, $3);
        string_free($3);
    }
    ;

identifier:
    IDENTIFIER                             { $$ = string_alloc(saifrtl_current_tok()); }
    ;

opt_string:
    %empty                                 { $$ = nullptr; }
  | string
    ;

string:
    STRING                                 { $$ = string_alloc(saifrtl_current_tok()); }
    ;
