// SPDX-License-Identifier: Apache-2.0
// Makes names legal SAIF identifiers by escaping. Touches counted strings only.
#ifndef WATTFORGE_PLUGIN_SAIF_LEGAL_NAME_H
#define WATTFORGE_PLUGIN_SAIF_LEGAL_NAME_H

#include "plugin/support/counted_string.h"

// 1 for a character that may begin a name: an ASCII letter or '_'.
int is_legal_saif_hchar(char c);

// 1 for a character that may follow: those, digits and '/', so that a divider is never escaped.
int is_legal_saif_char(char c);

// Puts a backslash before every character that is not legal where it stands. The name is replaced
// in place and the old text freed; done twice, it escapes its own backslashes.
void chg_to_saif_name(dstring **name);

#endif
