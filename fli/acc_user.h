/* SPDX-License-Identifier: Apache-2.0 */
/* The one access routine of the Verilog programming language interface (IEEE 1364) that the
 * interface shares with its regions: the project's own stand-in, replaced by a simulator's header
 * of the same name with -DFLI_INCLUDE_DIR=DIR. */
#ifndef ACC_USER_H
#define ACC_USER_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int PLI_INT32;
typedef PLI_INT32 *handle;

/* The full type of an object; a region's handle is an object handle too. */
extern PLI_INT32 acc_fetch_fulltype(handle object);

#ifdef __cplusplus
}
#endif

#endif
