# Installs the module into a folder, from a copy since the build leaves files in its source:
#  cmake -DPYTHON=... -DSOURCE=... -DSITE=... -P InstallModule.cmake
set(copy "${SITE}-source")
file(REMOVE_RECURSE "${SITE}" "${copy}")
file(COPY "${SOURCE}/pyproject.toml" "${SOURCE}/orvex" DESTINATION "${copy}" PATTERN __pycache__ EXCLUDE)
execute_process(COMMAND "${PYTHON}" -m pip --quiet --disable-pip-version-check install --no-index --no-build-isolation
                        --no-deps --root-user-action=ignore --target "${SITE}" "${copy}"
                COMMAND_ERROR_IS_FATAL ANY)
foreach(file __init__.py py.typed)
    if(NOT EXISTS "${SITE}/orvex/${file}")
        message(FATAL_ERROR "${file} was not installed")
    endif()
endforeach()
