// SPDX-License-Identifier: Apache-2.0
// Writes a tree as a SAIF file: header, nested instances with their ports and nets, trailer. What a
// port, net or instance looks like is for the print functions that the tree carries.
//
// Ports come before nets and both before instances, each in the
// order of entering. Names are made legal just before they are printed.
#ifndef WATTFORGE_PLUGIN_SAIF_WRITER_H
#define WATTFORGE_PLUGIN_SAIF_WRITER_H

#include "plugin/saif/attributes.h"
#include "plugin/saif/tree.h"

// How many blanks a level is deeper than the one around it.
constexpr int INDENTATION_STEP = 3;

// Writes the file to the header's stream, which stays open. Ports and nets without an instance are
// reported on standard output and dropped. The names in the tree are replaced by their legal forms,
// so a tree is generated once. 1 when the stream took every byte, 0 when a write failed (errno has
// the cause; the rest is not written). A tree without a root or one of its four print functions
// writes nothing and gives 1.
int saifout_generate_saif(const saif_header *header, SaifTree *tree, double scale);

#endif
