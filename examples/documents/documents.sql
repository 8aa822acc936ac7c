-- The documents table of the archive, for SQLite: 1,000 rows, identical in each run.
CREATE TABLE documents (
    id               INTEGER PRIMARY KEY,
    title            TEXT NOT NULL,
    department       TEXT NOT NULL,
    issuer           TEXT NOT NULL,
    kind             TEXT NOT NULL,
    confidentiality  TEXT NOT NULL,
    published        INTEGER NOT NULL,
    author           TEXT NOT NULL,
    region           TEXT NOT NULL);

WITH RECURSIVE numbered(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbered WHERE n < 1000),
drafted AS (
    SELECT n,
        CASE n % 5 WHEN 0 THEN 'Finance' WHEN 1 THEN 'Legal' WHEN 2 THEN 'Crewing' WHEN 3 THEN 'Fleet' ELSE 'Sales' END
            AS department,
        CASE n % 3 WHEN 0 THEN 'BGO-PORT' WHEN 1 THEN 'GDN-PORT' ELSE 'HEAD-OFFICE' END AS issuer,
        CASE n % 4 WHEN 0 THEN 'contract' WHEN 1 THEN 'invoice' WHEN 2 THEN 'letter' ELSE 'report' END AS kind,
        CASE n % 7 WHEN 0 THEN 'secret' WHEN 1 THEN 'public' WHEN 2 THEN 'public' ELSE 'internal' END AS confidentiality,
        'e' || (n % 40) AS author,
        CASE n % 6 WHEN 0 THEN 'all' WHEN 1 THEN 'baltic' WHEN 2 THEN 'north sea' ELSE 'atlantic' END AS region
    FROM numbered)
INSERT INTO documents
SELECT n, department || ' ' || kind || ' no. ' || n, department, issuer, kind, confidentiality,
    confidentiality = 'public', author, region
FROM drafted;
