# Installs the build into an empty folder, then configures, builds and runs the consumer project
# with nothing but that folder to find us by.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${out}")
  endif()
  message(STATUS "${out}")
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${PROJECT} -B ${WORK}/build -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/build)
run(${WORK}/build/linked)
run(${WORK}/build/values)
run(${WORK}/prefix/${BINDIR}/orbseq --version)
