10 REM Counted loop: ten million turns of an empty FOR loop, then a million with an addition
20 FOR I=1 TO 10000000
30 NEXT I
40 S=0
50 FOR I=1 TO 1000000
60 S=S+I MOD 7
70 NEXT I
80 PRINT S
90 SYSTEM
