# Sourced with the build's compiler in $compiler and the folder of its libraries in $gcc_library: the
# commands that compile and link a host.
gcc=("$compiler" -std=c++17)
clang=(clang++ -std=c++17)
clang_for_mingw=("${clang[@]}" --target=x86_64-w64-mingw32 -fuse-ld=lld -L"$gcc_library"
    -stdlib++-isystem "$gcc_library/include/c++"
    -cxx-isystem "$gcc_library/include/c++/x86_64-w64-mingw32" -Wno-unused-command-line-argument)
