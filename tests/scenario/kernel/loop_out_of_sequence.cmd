seq
seti n v=1
while n
do i f=1 l=2
end_while
end_do
end_while

q
