#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# The compiler as run.py has it called: the file with the planted fault, $PLANTED.*, without
# optimisation and warnings, everything else through the compiler cache where there is one.
case " $* " in
*"/$PLANTED."*) exec "$@" -O0 -g0 -w ;;
esac
if command -v ccache >/dev/null; then
    exec ccache "$@"
fi
exec "$@"
