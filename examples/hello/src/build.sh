#!/bin/sh
# Builds the example's files into the tree DIR (the source root of hello.idb):
#   DIR/lib/libgreet.so.1  DIR/bin/hello  DIR/etc/hello.conf  DIR/man/hello.1.gz
#   DIR/data/greetings  DIR/bin/hi (a link to hello)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
out=${1:?usage: build.sh DIR}
cc=${CC:-cc}
mkdir -p "$out/lib" "$out/bin" "$out/etc" "$out/man" "$out/data"
$cc -g -O2 -fPIC -shared -Wl,-soname,libgreet.so.1 -Wl,-z,relro -Wl,-z,now \
  -o "$out/lib/libgreet.so.1" "$here/greet.c"
$cc -g -O2 -fPIE -pie -Wl,-z,relro -Wl,-z,now -I"$here" -o "$out/bin/hello" "$here/hello.c" \
  "$out/lib/libgreet.so.1"
cp "$here/hello.conf" "$out/etc/hello.conf"
gzip -9n -c "$here/hello.1" >"$out/man/hello.1.gz"
cp "$here/greetings" "$out/data/greetings"
ln -sfn hello "$out/bin/hi"
