INSERT INTO case_lf (case_no, scheme, calculate, cal_date) VALUES
  (5, 'base', 0, 'x');
INSERT INTO bs (id, name) VALUES
  (0, 'placeholder');
INSERT INTO bs (id, name, v, iisland) VALUES
  (3, 'C', 7, 0), (1, 'A', 7, 0), (2, 'B', 7, -1);
INSERT INTO bus (id, ibs, v) VALUES
  ('p1', 1, 7), ('p0', 0, 7), ('p3', 3, 7);
INSERT INTO ln (id, descr, ibs, zbs, lnno, w, q, topflags) VALUES
  ('match', 'line one', 2, 1, 1, 9, 0, 0), ('nobranch', '', 1, 3, 1, 9, 0, 0), ('dropped', '', 1, 2, 1, 9, 4, 0);
INSERT INTO cp (id, ibs, cpno, w) VALUES
  ('shunt', 2, 1, 9);
INSERT INTO xf (id, ibs, zbs, xfno, i, w) VALUES
  ('xf', 1, 2, 2, 9, 9);
INSERT INTO un (id, ibs, w, r, rate_mva) VALUES
  ('g1', 1, 9, 9, 250), ('g2', 3, 9, 9, 1);
INSERT INTO ld (id, ibs, w, r) VALUES
  ('d1', 2, 9, 9);
