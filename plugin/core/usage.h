// SPDX-License-Identifier: Apache-2.0
// Hooks for usage texts, one for each family of commands. No command prints usage text today, so
// each is empty.
#ifndef WATTFORGE_PLUGIN_CORE_USAGE_H
#define WATTFORGE_PLUGIN_CORE_USAGE_H

inline void mfli_rtl_usage() {
}
inline void mfli_set_region_usage() {
}
inline void mfli_policy_usage() {
}
inline void mfli_start_usage() {
}
inline void mfli_stop_usage() {
}
inline void mfli_reset_usage() {
}
inline void mfli_report_usage() {
}
inline void mfli_debug_usage() {
}

#endif
