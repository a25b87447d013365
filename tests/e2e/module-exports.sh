#!/usr/bin/env bash
# What the module offers to whoever loads it.
names=$(nm -D --defined-only "$1" | awk '{print $3}' | grep -vE '^(__asan|__ubsan|__tsan|__sanitizer|__odr)' )
[ "$names" = onCreateModule ] && exit 0
echo "the module exports: $names"
exit 1
