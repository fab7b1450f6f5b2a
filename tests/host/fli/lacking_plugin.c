/* SPDX-License-Identifier: Apache-2.0 */
/* A plug-in that needs an interface function which the simulator does not offer. */
#include <mti.h>

extern void mti_Levitate(void);

void lacking_init(void) {
    mti_Levitate();
}
