/* SPDX-License-Identifier: Apache-2.0 */
/* A second set of interface headers, for a test: as another simulator might have them. */
#ifndef ALTERNATE_ACC_USER_H
#define ALTERNATE_ACC_USER_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int PLI_INT32;
typedef void *handle;

PLI_INT32 acc_fetch_fulltype(handle object);

#ifdef __cplusplus
}
#endif

#endif
