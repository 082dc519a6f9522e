target_compile_definitions(orva_clap PRIVATE ORVA_VERSION="${PROJECT_VERSION}")
