# String building: strings of 200 characters joined one character at a time, 5000 times
for pass_number in range(5000):
    s = ""
    for i in range(1, 201):
        s = s + chr(65 + i % 26)
print(len(s))
print(s[:26])
