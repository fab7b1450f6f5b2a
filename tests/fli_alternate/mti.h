/* SPDX-License-Identifier: Apache-2.0 */
/* A second set of interface headers, for a test: the same functions and names as fli/mti.h, but
 * other numbers, untyped handles and a time that is a union of two words, both signed. What is
 * built against these and works shows that it leans on the names alone. */
#ifndef ALTERNATE_MTI_H
#define ALTERNATE_MTI_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int mtiInt32T;
typedef unsigned int mtiUInt32T;
typedef void *mtiRegionIdT;
typedef void *mtiSignalIdT;
typedef void *mtiTypeIdT;
typedef void *mtiProcessIdT;
typedef void mtiInterfaceListT;
typedef void (*mtiVoidFuncPtrT)(void *);

typedef union {
    struct {
        mtiInt32T lo;
        mtiInt32T hi;
    } s;
    double align;
} mtiTime64T;

#define MTI_TIME64_INIT(h, l)              \
    {                                      \
        { (mtiInt32T)(l), (mtiInt32T)(h) } \
    }
#define MTI_TIME64_ASGN(t, h, l) ((t).s.lo = (mtiInt32T)(l), (t).s.hi = (mtiInt32T)(h))
#define MTI_TIME64_HI32(t) ((t).s.hi)
#define MTI_TIME64_LO32(t) ((t).s.lo)

typedef enum {
    MTI_TYPE_TIME = 3,
    MTI_TYPE_FILE = 11,
    MTI_TYPE_ACCESS = 12,
    MTI_TYPE_REAL = 13,
    MTI_TYPE_PHYSICAL = 14,
    MTI_TYPE_ENUM = 20,
    MTI_TYPE_RECORD = 21,
    MTI_TYPE_ARRAY = 22,
    MTI_TYPE_SCALAR = 23
} mtiTypeKindT;

typedef enum { MTI_DIR_INOUT = 4, MTI_DIR_OUT = 5, MTI_DIR_IN = 6, MTI_INTERNAL = 7 } mtiDirectionT;

typedef enum { MTI_EVENT = 30, MTI_ACTIVE = 31 } mtiProcessTriggerT;

typedef enum {
    MTI_PROC_IMMEDIATE = 40,
    MTI_PROC_POSTPONED = 41,
    MTI_PROC_NORMAL = 42
} mtiProcessPriorityT;

void mti_AddCommand(char *, mtiVoidFuncPtrT);
void mti_AddQuitCB(mtiVoidFuncPtrT, void *);
void mti_PrintMessage(char *);
void mti_VsimFree(void *);
mtiRegionIdT mti_GetTopRegion(void);
mtiRegionIdT mti_FindRegion(char *);
mtiRegionIdT mti_FirstLowerRegion(mtiRegionIdT);
mtiRegionIdT mti_NextRegion(mtiRegionIdT);
char *mti_GetRegionFullName(mtiRegionIdT);
char *mti_GetRegionName(mtiRegionIdT);
int mti_GetRegionKind(mtiRegionIdT);
mtiSignalIdT mti_FindSignal(char *);
mtiSignalIdT mti_FirstSignal(mtiRegionIdT);
mtiSignalIdT mti_NextSignal(void);
mtiRegionIdT mti_GetSignalRegion(mtiSignalIdT);
char *mti_GetSignalName(mtiSignalIdT);
char *mti_GetSignalNameIndirect(mtiSignalIdT, char *, int);
mtiTypeIdT mti_GetSignalType(mtiSignalIdT);
mtiSignalIdT *mti_GetSignalSubelements(mtiSignalIdT, mtiSignalIdT *);
mtiDirectionT mti_GetSignalMode(mtiSignalIdT);
mtiInt32T mti_GetSignalValue(mtiSignalIdT);
mtiTypeKindT mti_GetTypeKind(mtiTypeIdT);
mtiTypeIdT mti_GetArrayElementType(mtiTypeIdT);
char **mti_GetEnumValues(mtiTypeIdT);
mtiInt32T mti_TickLength(mtiTypeIdT);
mtiInt32T mti_TickLeft(mtiTypeIdT);
mtiInt32T mti_TickRight(mtiTypeIdT);
mtiInt32T mti_TickDir(mtiTypeIdT);
mtiProcessIdT mti_CreateProcess(char *, mtiVoidFuncPtrT, void *);
mtiProcessIdT mti_CreateProcessWithPriority(char *, mtiVoidFuncPtrT, void *, mtiProcessPriorityT);
void mti_Sensitize(mtiProcessIdT, mtiSignalIdT, mtiProcessTriggerT);
mtiTime64T *mti_NowIndirect(mtiTime64T *);
int mti_GetResolutionLimit(void);

#ifdef __cplusplus
}
#endif

#endif
