/* SPDX-License-Identifier: Apache-2.0 */
/* A plug-in for the loading tests: says what it was given, watches /top/clk, and quits loudly. */
#include <mti.h>
#include <stdio.h>
#include <string.h>

static void count(void *parameter) {
    (void)parameter;
    mti_PrintMessage((char *)"clk changed");
}

static void echo(void *line) {
    char text[200];
    char *blank = strchr((char *)line, ' ');
    snprintf(text, sizeof text, "got {%s}", (char *)line);
    mti_PrintMessage(text);
    if (blank != NULL) {
        *blank = '\0'; /* a plug-in may cut its line up */
    }
}

static void quit(void *parameter) {
    mti_PrintMessage((char *)parameter);
}

void good_init(mtiRegionIdT region, char *parameter, mtiInterfaceListT *generics,
               mtiInterfaceListT *ports) {
    char *name = mti_GetRegionFullName(mti_GetTopRegion());
    char text[200];
    snprintf(text, sizeof text, "loaded at %s, %s", name,
             region || parameter || generics || ports ? "with arguments" : "without arguments");
    mti_PrintMessage(text);
    mti_VsimFree(name);
    mti_AddCommand((char *)"echo_line", echo);
    mti_AddQuitCB(quit, (char *)"first to quit");
    mti_AddQuitCB(quit, (char *)"second to quit");
    mti_Sensitize(mti_CreateProcess((char *)"watch_clk", count, NULL),
                  mti_FindSignal((char *)"/top/clk"), MTI_EVENT);
}
