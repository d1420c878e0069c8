10 REM Mixed loop in the manner of Rugg and Feldman's seventh test: arithmetic, a GOSUB and an
20 REM inner loop over an array, 200 000 turns of a loop closed by IF
30 DIM M(5)
40 K=0
50 K=K+1
60 A=K/2*3+4-5
70 GOSUB 130
80 FOR L=1 TO 5
90 M(L)=A
100 NEXT L
110 IF K<200000 THEN 50
120 PRINT M(5):SYSTEM
130 RETURN
