10 REM String building: strings of 200 characters joined one character at a time, 5000 times
20 FOR P=1 TO 5000
30 S$=""
40 FOR I=1 TO 200
50 S$=S$+CHR$(65+I MOD 26)
60 NEXT I
70 NEXT P
80 PRINT LEN(S$)
90 PRINT MID$(S$,1,26)
100 SYSTEM
