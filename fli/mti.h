/* SPDX-License-Identifier: Apache-2.0 */
/* The simulator's Foreign Language Interface, as far as Wattforge uses or offers it: the project's
 * own stand-in, written from the interface's published description. A build for a simulator takes
 * that simulator's header of the same name instead (-DFLI_INCLUDE_DIR=DIR), so code on the
 * plug-in's side uses the names below, never their values.
 *
 * Texts are `char *` throughout, as the interface has them; a callee never writes to a text that it
 * is given. A function that takes a `buf` fills it, or, when it is null, returns memory that the
 * caller releases with mti_VsimFree. */
#ifndef MTI_H
#define MTI_H

#include <limits.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int mtiInt32T;
typedef unsigned int mtiUInt32T;

/* Handles: opaque, owned by the simulator, valid until it quits. */
typedef struct mtiRegionTag *mtiRegionIdT;
typedef struct mtiSignalTag *mtiSignalIdT;
typedef struct mtiTypeTag *mtiTypeIdT;
typedef struct mtiProcessTag *mtiProcessIdT;
typedef struct mtiInterfaceListTag mtiInterfaceListT;

typedef void (*mtiVoidFuncPtrT)(void *);

/* A signed 64-bit count of resolution ticks: a plain integer where `long` has 64 bits, else two
 * words. Only the macros reach into it. */
#if LONG_MAX > 2147483647L
typedef long mtiTime64T;
#define MTI_TIME64_INIT(hi, lo) \
    ((mtiTime64T)((((unsigned long)(mtiUInt32T)(hi)) << 32) | (unsigned long)(mtiUInt32T)(lo)))
#define MTI_TIME64_ASGN(time, hi, lo) ((time) = MTI_TIME64_INIT((hi), (lo)))
#define MTI_TIME64_HI32(time) ((mtiInt32T)((time) >> 32))
#define MTI_TIME64_LO32(time) ((mtiUInt32T)((unsigned long)(time)&0xffffffffUL))
#else
typedef struct mtiTime64Tag {
    mtiUInt32T low;
    mtiInt32T high;
} mtiTime64T;
#define MTI_TIME64_INIT(hi, lo) \
    { (mtiUInt32T)(lo), (mtiInt32T)(hi) }
#define MTI_TIME64_ASGN(time, hi, lo) ((time).low = (mtiUInt32T)(lo), (time).high = (mtiInt32T)(hi))
#define MTI_TIME64_HI32(time) ((time).high)
#define MTI_TIME64_LO32(time) ((time).low)
#endif

typedef enum {
    MTI_TYPE_SCALAR = 0, /* integer */
    MTI_TYPE_ARRAY = 1,
    MTI_TYPE_RECORD = 2,
    MTI_TYPE_ENUM = 3,
    MTI_TYPE_PHYSICAL = 5,
    MTI_TYPE_REAL = 6,
    MTI_TYPE_ACCESS = 7,
    MTI_TYPE_FILE = 8,
    MTI_TYPE_TIME = 9
} mtiTypeKindT;

typedef enum { MTI_INTERNAL = 0, MTI_DIR_IN = 1, MTI_DIR_OUT = 2, MTI_DIR_INOUT = 3 } mtiDirectionT;

/* What wakes a sensitised process: any transaction, or a change of value. */
typedef enum { MTI_ACTIVE = 0, MTI_EVENT = 1 } mtiProcessTriggerT;

/* When a woken process runs: with its delta cycle, at once, or once after all other activity of the
 * time step. */
typedef enum {
    MTI_PROC_NORMAL = 0,
    MTI_PROC_IMMEDIATE = 1,
    MTI_PROC_POSTPONED = 2
} mtiProcessPriorityT;

/* Commands, messages, memory. A command's function receives the whole command line, its own name
 * included. mti_PrintMessage adds the newline. */
extern void mti_AddCommand(char *name, mtiVoidFuncPtrT function);
extern void mti_AddQuitCB(mtiVoidFuncPtrT function, void *parameter);
extern void mti_PrintMessage(char *text);
extern void mti_VsimFree(void *memory);

/* Regions. Names are absolute ("/top/u1") or relative to the environment, at first the top region.
 * mti_VsimFree releases the full name, not the plain one. mti_NextRegion keeps no state. */
extern mtiRegionIdT mti_GetTopRegion(void);
extern mtiRegionIdT mti_FindRegion(char *name);
extern mtiRegionIdT mti_FirstLowerRegion(mtiRegionIdT region);
extern mtiRegionIdT mti_NextRegion(mtiRegionIdT region);
extern char *mti_GetRegionFullName(mtiRegionIdT region);
extern char *mti_GetRegionName(mtiRegionIdT region);
extern int mti_GetRegionKind(mtiRegionIdT region);

/* Signals. mti_FirstSignal and mti_NextSignal share one cursor for the whole process. The name of a
 * sub-element is that of its whole composite; the indirect name is the element as written
 * ("bus(3)", "rec.field"). Sub-elements come left to right, one level at a time, and keep their
 * handles. */
extern mtiSignalIdT mti_FindSignal(char *name);
extern mtiSignalIdT mti_FirstSignal(mtiRegionIdT region);
extern mtiSignalIdT mti_NextSignal(void);
extern mtiRegionIdT mti_GetSignalRegion(mtiSignalIdT signal);
extern char *mti_GetSignalName(mtiSignalIdT signal);
extern char *mti_GetSignalNameIndirect(mtiSignalIdT signal, char *buf, int length);
extern mtiTypeIdT mti_GetSignalType(mtiSignalIdT signal);
extern mtiSignalIdT *mti_GetSignalSubelements(mtiSignalIdT signal, mtiSignalIdT *buf);
extern mtiDirectionT mti_GetSignalMode(mtiSignalIdT signal);
extern mtiInt32T mti_GetSignalValue(mtiSignalIdT signal);

/* Types. The literals stay the simulator's. The length is a number of elements, literals or fields,
 * and 0 for real, time and an integer that spans the full range. The direction is +1, -1, or 0 for
 * a record. */
extern mtiTypeKindT mti_GetTypeKind(mtiTypeIdT type);
extern mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT type);
extern char **mti_GetEnumValues(mtiTypeIdT type);
extern mtiInt32T mti_TickLength(mtiTypeIdT type);
extern mtiInt32T mti_TickLeft(mtiTypeIdT type);
extern mtiInt32T mti_TickRight(mtiTypeIdT type);
extern mtiInt32T mti_TickDir(mtiTypeIdT type);

/* Processes. A process of a library named on the command line never runs by itself: it wakes when
 * a signal to which it is sensitised asks for it. */
extern mtiProcessIdT mti_CreateProcess(char *name, mtiVoidFuncPtrT function, void *parameter);
extern mtiProcessIdT mti_CreateProcessWithPriority(char *name, mtiVoidFuncPtrT function,
                                                   void *parameter, mtiProcessPriorityT priority);
extern void mti_Sensitize(mtiProcessIdT process, mtiSignalIdT signal, mtiProcessTriggerT trigger);

/* Time. The resolution limit is a power of ten of seconds, -15 to 2. */
extern mtiTime64T *mti_NowIndirect(mtiTime64T *buf);
extern int mti_GetResolutionLimit(void);

#ifdef __cplusplus
}
#endif

#endif
