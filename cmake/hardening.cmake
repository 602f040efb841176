# The hardening a packaged program is expected to carry: libc calls checked
# against the buffer sizes the optimiser can see (so only where it optimises),
# and relocations resolved at start and then made read-only. The sanitizer
# and fuzz builds keep their own checks, which fortified calls would bypass.
if(NOT NORVEX_SANITIZE AND NOT NORVEX_FUZZ)
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
add_link_options(LINKER:-z,relro,-z,now)
