# Runs orvane on a transcript's console lines and compares its standard
# output with the expected one, exactly. NAME.args, when present, replaces
# the default arguments.
get_filename_component(dir ${ENTREE} DIRECTORY)
get_filename_component(nom ${ENTREE} NAME_WE)
set(args gra=0 ID ini=env/initb.h)
if(EXISTS ${dir}/${nom}.args)
  file(READ ${dir}/${nom}.args contenu)
  string(STRIP "${contenu}" contenu)
  separate_arguments(args UNIX_COMMAND "${contenu}")
endif()
execute_process(COMMAND ${ORVANE} ${args}
  INPUT_FILE ${ENTREE}
  OUTPUT_VARIABLE sortie
  RESULT_VARIABLE code
  TIMEOUT 60)
set(attendu_fichier ${dir}/${nom}.out)
if(DEFINED REGENERE)
  file(WRITE ${attendu_fichier} "${sortie}")
  return()
endif()
file(READ ${attendu_fichier} attendu)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "${nom}: exit status ${code}")
endif()
if(NOT sortie STREQUAL attendu)
  set(obtenu ${CMAKE_CURRENT_BINARY_DIR}/${nom}.obtenu)
  file(WRITE ${obtenu} "${sortie}")
  execute_process(COMMAND diff -u ${attendu_fichier} ${obtenu})
  message(FATAL_ERROR "${nom}: output differs (got ${obtenu})")
endif()
