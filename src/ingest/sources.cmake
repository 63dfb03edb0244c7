# Drop ingestion and clipboard import.
set(MOSSWICK_INGEST_SOURCES
)
