# Installs what builds the page, unless what is there is younger than the list of it: build folders
# share one installation, and none pulls it away from under another.
set(installed ${PAGE}/node_modules/.package-lock.json)
if(EXISTS ${installed}
   AND NOT ${PAGE}/package.json IS_NEWER_THAN ${installed}
   AND NOT ${PAGE}/package-lock.json IS_NEWER_THAN ${installed})
  return()
endif()
execute_process(
  COMMAND ${NPM_PROGRAM} ci --no-audit --no-fund --loglevel=error
  WORKING_DIRECTORY ${PAGE}
  COMMAND_ERROR_IS_FATAL ANY)
