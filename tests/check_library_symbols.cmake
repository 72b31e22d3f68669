# The library is an ELF 32-bit shared object for MACHINE (readelf's name, with FLAGS) that
# exports JNI_OnLoad; the middleware's functions are undefined in it and defined by the
# middleware library.
execute_process(COMMAND readelf -h ${LIB} OUTPUT_VARIABLE header)
if(NOT header MATCHES "Class:[ \t]+ELF32" OR NOT header MATCHES "Type:[ \t]+DYN")
  message(FATAL_ERROR "not an ELF32 shared object:\n${header}")
endif()
if(NOT MACHINE OR NOT header MATCHES "Machine:[ \t]+${MACHINE}\n"
   OR NOT header MATCHES "Flags:[^\n]*${FLAGS}")
  message(FATAL_ERROR "not built for '${MACHINE}' '${FLAGS}':\n${header}")
endif()
execute_process(COMMAND nm -D --defined-only ${LIB} OUTPUT_VARIABLE defined)
if(NOT defined MATCHES " T JNI_OnLoad\n")
  message(FATAL_ERROR "JNI_OnLoad is not exported")
endif()
execute_process(COMMAND nm -D --undefined-only ${LIB} OUTPUT_VARIABLE undefined)
execute_process(COMMAND nm -D --defined-only ${MW} OUTPUT_VARIABLE mw_defined)
set(count 0)
foreach(fn x_sb_open_builder x_sb_reg_scan_map x_sb_start_scan x_sb_cancel_scan x_sb_close_builder
           x_mem_alloc x_mem_free x_memset x_strncpy x_strlen x_strncmp x_sprintf
           handle_alloc handle_get_obj x_handle_free x_orvella_filter_register_get_pipeline_obj
           c_svl_register_every_notify c_svl_unreg_every_notify)
  if(NOT undefined MATCHES "U ${fn}\n" AND NOT defined MATCHES " ${fn}\n")
    continue()  # not used (yet) by the library
  endif()
  if(NOT undefined MATCHES "U ${fn}\n")
    message(FATAL_ERROR "${fn} is defined inside the library instead of the middleware")
  endif()
  if(NOT mw_defined MATCHES " T ${fn}\n")
    message(FATAL_ERROR "${fn} is not defined by the middleware library")
  endif()
  math(EXPR count "${count} + 1")
endforeach()
if(count LESS 4)
  message(FATAL_ERROR "expected the library to take its middleware functions from outside (${count} found)")
endif()
message(STATUS "ELF32, JNI_OnLoad exported, ${count} middleware functions resolved from the middleware")
