# lfdb carries the database schema inside: the SQL file is embedded at build
# time, so a database made anywhere has exactly the tables the engine binds.
set(lfdb_schema_cpp ${CMAKE_CURRENT_BINARY_DIR}/lfdb_schema.cpp)
file(READ ${PROJECT_SOURCE_DIR}/src/rtdb/schema.sql LF_SCHEMA_SQL)
configure_file(${dir}/schema.cpp.in ${lfdb_schema_cpp} @ONLY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${PROJECT_SOURCE_DIR}/src/rtdb/schema.sql ${dir}/schema.cpp.in)
target_sources(${tool} PRIVATE ${lfdb_schema_cpp})
target_link_libraries(${tool} PRIVATE lfcore lfcmdline)
