# Runs orvane on a transcript's console lines and compares its standard
# output with the expected one, exactly. NAME.args, when present, replaces
# the default arguments.
#
# Each run has a scratch directory of its own, holding links to env/ and to
# the fixtures and a copy of the init file, so that both ini=env/initb.h and
# the default init name work and files the run writes stay out of the tree.
get_filename_component(dir ${ENTREE} DIRECTORY)
get_filename_component(nom ${ENTREE} NAME_WE)
if(NOT DEFINED SOURCE)
  get_filename_component(SOURCE ${dir}/../.. ABSOLUTE)
endif()
if(NOT DEFINED SCRATCH)
  set(SCRATCH ${SOURCE}/build/tests/transcripts/${nom})
endif()
# GRAPHIQUE: the same lines run with the window open (the caller gives a
# display); only the announcement line may differ.
file(REMOVE_RECURSE ${SCRATCH})
file(MAKE_DIRECTORY ${SCRATCH})
file(CREATE_LINK ${SOURCE}/env ${SCRATCH}/env SYMBOLIC)
# A fixture directory holds only the files it breaks; the others come from env/.
file(GLOB fixtures LIST_DIRECTORIES true ${SOURCE}/tests/transcripts/fixtures/*)
foreach(f ${fixtures})
  get_filename_component(fnom ${f} NAME)
  if(IS_DIRECTORY ${f})
    file(MAKE_DIRECTORY ${SCRATCH}/fixtures/${fnom})
    file(GLOB propres ${f}/*)
    foreach(p ${propres})
      get_filename_component(pnom ${p} NAME)
      if(pnom MATCHES "^(.*)\\.cmake$")
        # NAME.cmake derives NAME from env/NAME: it edits `contenu`, so the
        # fixture breaks one thing and follows env/ in everything else.
        set(derive ${CMAKE_MATCH_1})
        file(READ ${SOURCE}/env/${derive} contenu)
        include(${p})
        file(WRITE ${SCRATCH}/fixtures/${fnom}/${derive} "${contenu}")
      else()
        file(CREATE_LINK ${p} ${SCRATCH}/fixtures/${fnom}/${pnom} SYMBOLIC)
      endif()
    endforeach()
    file(GLOB envs ${SOURCE}/env/*.h)
    foreach(e ${envs})
      get_filename_component(enom ${e} NAME)
      if(NOT EXISTS ${f}/${enom} AND NOT EXISTS ${f}/${enom}.cmake)
        file(CREATE_LINK ${e} ${SCRATCH}/fixtures/${fnom}/${enom} SYMBOLIC)
      endif()
    endforeach()
  else()
    file(CREATE_LINK ${f} ${SCRATCH}/fixtures/${fnom} SYMBOLIC)
  endif()
endforeach()
file(COPY ${SOURCE}/env/initb.h DESTINATION ${SCRATCH})

set(args gra=0 ID ini=env/initb.h)
if(EXISTS ${dir}/${nom}.args)
  file(READ ${dir}/${nom}.args contenu)
  string(STRIP "${contenu}" contenu)
  separate_arguments(args UNIX_COMMAND "${contenu}")
endif()
if(GRAPHIQUE)
  list(TRANSFORM args REPLACE "^gra=0$" "gra=1")
endif()
execute_process(COMMAND ${ORVANE} ${args}
  INPUT_FILE ${ENTREE}
  OUTPUT_VARIABLE sortie
  RESULT_VARIABLE code
  WORKING_DIRECTORY ${SCRATCH}
  TIMEOUT 60)
set(attendu_fichier ${dir}/${nom}.out)
# Most runs start with the same banner: their .out leaves it out (it does
# not start with the banner's first character) and entete.txt stands for it,
# with the values of the keys that the banner echoes.
file(READ ${SOURCE}/tests/transcripts/entete.txt entete)
set(echos "ini=Initialisation = " "env=Environnement dans " "uti=Utilitaires dans "
          "loc=variables locales       " "eva=evaluations             " "obj=objets                  "
          "emp=empilements             ")
foreach(a ${args})
  foreach(e ${echos})
    string(REGEX MATCH "^[a-z]+=" cle "${e}")
    string(LENGTH "${cle}" n)
    string(SUBSTRING "${e}" ${n} -1 ligne)
    string(FIND "${a}" "${cle}" debut)
    if(debut EQUAL 0)
      string(SUBSTRING "${a}" ${n} -1 valeur)
      if(cle STREQUAL "uti=")
        string(APPEND valeur "/")
      endif()
      string(REGEX REPLACE "\n${ligne}[^\n]*\n" "\n${ligne}${valeur}\n" entete "${entete}")
    endif()
  endforeach()
endforeach()
if(DEFINED REGENERE)
  string(LENGTH "${entete}" n)
  string(SUBSTRING "${sortie}" 0 ${n} debut)
  if(debut STREQUAL entete)
    string(SUBSTRING "${sortie}" ${n} -1 sortie)
  endif()
  file(WRITE ${attendu_fichier} "${sortie}")
  return()
endif()
file(READ ${attendu_fichier} attendu)
if(NOT attendu MATCHES "^\\*")
  string(PREPEND attendu "${entete}")
endif()
if(GRAPHIQUE)
  # The announcement's two texts, as the message file gives them.
  file(STRINGS ${SOURCE}/env/mesb.h avec REGEX "^\\|89:")
  file(STRINGS ${SOURCE}/env/mesb.h sans REGEX "^\\|95:")
  string(REGEX REPLACE "^\\|89:(.*)\\\\n$" "\\1" avec "${avec}")
  string(REGEX REPLACE "^\\|95:(.*)\\\\n$" "\\1" sans "${sans}")
  string(REPLACE "${avec}\n" "${sans}\n" sortie "${sortie}")
endif()
if(NOT code EQUAL 0)
  message(FATAL_ERROR "${nom}: exit status ${code}")
endif()
if(NOT sortie STREQUAL attendu)
  set(obtenu ${SCRATCH}.obtenu)
  file(WRITE ${obtenu} "${sortie}")
  execute_process(COMMAND diff -u ${attendu_fichier} ${obtenu})
  message(FATAL_ERROR "${nom}: output differs (got ${obtenu})")
endif()
