INSERT INTO global (base_mva) VALUES
  (50);
INSERT INTO case_lf (vmax, vmin, tolerance, method, iteration, ctrl_rmxm, nbus, ngenerat, nload, nacline, ndcline, ntrans) VALUES
  (1.1, 0.9, 0.001, 4, 30, 1, 9, 9, 9, 9, 9, 9);
-- kv rows by id: 'a' has index 0, 'b' 1, 'c' 2.
INSERT INTO kv (id, dv, vbase, vmax, vmin) VALUES
  ('c', '7', 110, 100, 120), ('a', ' 3 ', 220, 242, 198), ('b', '4', 0, 1.05, 0.95);
INSERT INTO bs (id, name, ikv, iisland) VALUES
  (5, 'Second bus', 1, 0), (0, 'x', 0, 0), (2, 'First bus with a long name', 0, 0), (7, 'Gone', 0, -1), (9, 'Crossed', 2, 0);
INSERT INTO ln (ibs, zbs, lnno, dv, r1, x1, bch, q, topflags, mode_ctrl, par_group) VALUES
  (1, 2, 1, '12', 0.01, 0.1, 0.02, 3, 0, 5, 6), (1, 2, 2, '', 0.01, 0.1, 0, 1, 0, 0, 0), (1, 3, 1, '', 0.01, 0.1, 0, 0, 4, 0, 0);
INSERT INTO cp (ibs, cpno, r1, x1, q, par_no) VALUES
  (2, 1, 0, -20, 0, 8), (3, 1, 0, 5, 1, 0);
INSERT INTO xf (ibs, zbs, xfno, r1, x1, tk, rm, xm, ang_shift, q, topflags, par_no) VALUES
  (2, 4, 1, 0, 0.05, 1.05, 0, 0, 0, 1, 0, 0), (2, 3, 1, 0.001, 0.05, 0.95, 80, 40, 30, 0, 0, 11);
INSERT INTO dln (ibs, zbs, dlnno, dv, rl_ohm, i_bridge, j_tap, q) VALUES
  (1, 4, 1, '2', 6.5, 2, 3, 0), (1, 4, 2, '', 1, 1, 1, 4);
INSERT INTO un (ibs, mode_ctrl, w, r, v, adeg, rmx, rmn, q, topflags) VALUES
  (1, 0, 1.5, 0.5, 1.02, 0, 2, -1, 0, 0), (2, -6, 0.25, 0, 1.01, 0, 1, -1, 0, 0), (3, 1, 9, 9, 1, 0, 0, 0, 0, 1);
INSERT INTO ld (ibs, ldno, mode_ctrl, w, r) VALUES
  (2, 1, 1, 0.5, 0.25), (3, 1, 2, 0.125, 0), (2, 2, -5, 0.75, 0.5);
INSERT INTO load_lib (par_no, ap, cq) VALUES
  (3, 0.5, 0.25), (2, 0.75, 0), (7, 1, 1);
