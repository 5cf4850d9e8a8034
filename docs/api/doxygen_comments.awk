# Doxygen input filter: turns the plain comments of the public headers into documentation. The first comment of a file
# describes the file, a comment line the declaration that follows, a comment after code that code. Indented lines within
# a comment keep their layout. Banners stay plain. Deleted functions are not part of the interface.

# One declaration for each name of `type a, b, c;`, all with the same comment.
function print_each(type, names, comment,    name, count, i) {
  count = split(names, name, /, */)
  for (i = 1; i <= count; ++i) print type " " name[i] ";  ///< " comment
}

/= delete;$/            { next }
/^(class|struct) [^{]*;/ { sub(/ *\/\/.*/, ""); print; next }
/^ *\/\/ *(----|====)/  { print "//"; next }
FNR == 1 && /^\/\//     { print "/// @file" }
FNR == 1 && /^\/\*/     { sub(/^\/\*/, "/** @file\n *"); print; next }
/^\/\*/                 { sub(/^\/\*/, "/**"); print; next }
/^ *\/\/   /            { if (!laid_out) print "///"; laid_out = 1; sub(/\/\/ /, "///     "); print; next }
/^ *\/\/( |$)/          { if (laid_out) print "///"; laid_out = 0; sub(/\/\//, "///"); print; next }
                        { laid_out = 0 }
/^[A-Z][A-Za-z]*Fn [^=]*;$/ {  # functions that share a type: the contract is at the type
  names = substr($0, length($1) + 2)
  sub(/;$/, "", names)
  print_each($1, names, "See #" $1 ".")
  next
}
/^ *[a-z_0-9:]+ [A-Za-z]+(, [A-Za-z]+)+; +\/\/ / {
  names = comment = $0
  sub(/^ *[^ ]+ /, "", names)
  sub(/;.*/, "", names)
  sub(/.*; +\/\/ /, "", comment)
  print_each($1, names, comment)
  next
}
/^ *[a-z_0-9]+ [a-z_]+(, [a-z_]+)+; +\/\*/ {  # C: the comment may go on in further lines
  names = comment = $0
  sub(/^ *[^ ]+ /, "", names)
  sub(/;.*/, "", names)
  sub(/.*; +\/\* /, "", comment)
  sub(/ *\*\/$/, "", comment)
  print_each($1, names, comment)
  next
}
                        { sub(/; +\/\/ /, ";  ///< "); sub(/[;,] +\/\* /, "&<"); sub(/\/\* </, "/**< "); print }
