# `static_analysis`: clang-tidy (bugprone, cert, performance; see .clang-tidy) and cppcheck
# over every source of the library, the simulator and the host platform in this build's
# compile_commands.json, so new sources are analysed without being listed. Fails on any
# finding; the few that the system's fixed interfaces force are suppressed at their line
# with the reason beside them.
find_program(ORVELLA_RUN_CLANG_TIDY NAMES run-clang-tidy run-clang-tidy-14)
find_program(ORVELLA_CPPCHECK cppcheck)
if(ORVELLA_RUN_CLANG_TIDY AND ORVELLA_CPPCHECK)
  set(analysed services/jni/scan middleware/sim platform/host)
  list(TRANSFORM analysed PREPEND "${CMAKE_SOURCE_DIR}/" OUTPUT_VARIABLE analysed_dirs)
  list(JOIN analysed_dirs "|" tidy_files)
  # cppcheck 2.10 matches no absolute filter against a project's files: a pattern does.
  list(TRANSFORM analysed APPEND "/*" OUTPUT_VARIABLE cppcheck_filters)
  list(TRANSFORM cppcheck_filters PREPEND "--file-filter=*/")
  add_custom_target(static_analysis
    COMMAND ${ORVELLA_RUN_CLANG_TIDY} -quiet -p ${CMAKE_BINARY_DIR} "(${tidy_files})/"
    COMMAND ${ORVELLA_CPPCHECK} --project=${CMAKE_BINARY_DIR}/compile_commands.json
            ${cppcheck_filters} --enable=warning,performance,portability,style
            --inline-suppr --error-exitcode=1 --quiet -j2
            # The lookups stop at their first match and log or act there; an algorithm
            # would not read better.
            --suppress=useStlAlgorithm
            "--template={file}:{line}: {severity}: {message} [{id}]"
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
    COMMENT "clang-tidy and cppcheck over the library, the simulator and the host platform"
    VERBATIM)
endif()
