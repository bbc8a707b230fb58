# orv_warnings  what every file of the project is compiled with
# orv_sanitizers  the sanitizers of ORV_SANITIZE, for what they are to watch
# orv_numerics  what makes results the same for every build: no contraction, no reassociation, and the
#               baseline instruction set; benchmarks use it too, so that their loops face the same rules
add_library(orv_warnings INTERFACE)
target_compile_options(orv_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion)

add_library(orv_numerics INTERFACE)
target_compile_options(orv_numerics INTERFACE
  -march=x86-64 -mfpmath=sse -ffp-contract=off -fno-math-errno)

# What is watched links orv_sanitizers: the libraries, what the hosts share, and the tests that compile the library's
# own inline functions. The other tests and the parsing of options are not, as that would double the time they take to
# build; what they call is.
add_library(orv_sanitizers INTERFACE)
if(ORV_SANITIZE)
  target_compile_options(orv_sanitizers INTERFACE
    -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORV_SANITIZE})
endif()
