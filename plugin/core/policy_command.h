// SPDX-License-Identifier: Apache-2.0
// The handler of set_net_monitoring_policy: fills the policy table (select/policy.h).
#ifndef WATTFORGE_PLUGIN_CORE_POLICY_COMMAND_H
#define WATTFORGE_PLUGIN_CORE_POLICY_COMMAND_H

// set_net_monitoring_policy KEYWORD REGION... [KEYWORD REGION...]...: each keyword ("off", "on" or
// "rtl_on", in any case) holds for the regions that follow it. Trailing blanks of the command line
// are cut off in place.
void mfli_policy(void *command_line);

#endif
